// Options of the commands that work through a database.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

#include "sql/sql_database.h"
#include "table_options.h"

namespace command {

struct sql_options {
  std::string memory;
  LONG threads = 0;
  std::string absent = "null";  ///< null, nan, keep, or the text that stands for NULL

  enum absent_value absent_value() const {
    if (absent == "nan") return command::absent_value::nan;
    return absent == "keep" ? command::absent_value::keep : command::absent_value::null;
  }
  /// What is written for NULL.
  std::string shown_absent() const {
    return absent == "null" || absent == "nan" || absent == "keep" ? std::string() : absent;
  }
  sql_settings settings() const { return {memory, static_cast<int>(threads), absent_value()}; }
};

/// Why it is no amount of memory as the database writes them; empty: it is one.
inline std::string memory_problem(const std::string& words) {
  constexpr std::string_view digits = "0123456789.";
  constexpr std::string_view letters = "KMGTkmgt";
  std::string_view rest = words;
  const bool has_number = !rest.empty() && rest[0] >= '0' && rest[0] <= '9';
  rest.remove_prefix(std::min(rest.find_first_not_of(digits), rest.size()));
  rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
  const bool has_unit = !rest.empty() && letters.find(rest[0]) != letters.npos;
  if (has_unit) rest.remove_prefix(rest.size() > 2 && (rest[1] | 0x20) == 'i' ? 2 : 1);
  const bool ends = rest.size() == 1 && (rest[0] | 0x20) == 'b';
  return has_number && has_unit && ends ? std::string() : words + " is no amount of memory like 500MB or 2GB";
}

/// --memory and --threads.
inline void add_sql_options(const verb& owner, sql_options& options) {
  owner.add_option("--memory", options.memory, "work with so much memory and put the rest on the disk")
      .type_name("2GB")
      .check(memory_problem);
  owner.add_number("--threads", options.threads, {.least = 1, .most = 1024}, "work with so many threads")
      .type_name("N");
}

}  // namespace command
