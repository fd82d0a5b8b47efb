// Options that commands have in common.
#pragma once

#include <charconv>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "commands.h"
#include "ovfile/component.h"
#include "words.h"

namespace command {

struct row_options {
  std::string table;
  std::vector<std::string> columns;
  std::string absent;
  std::optional<std::string> where;
};

inline void add_table_argument(CLI::App& app, std::string& table) {
  app.add_option("table", table, "the table file")->required();
}

/// For options of whole numbers. The number goes on without zeros in front, which would make it octal.
inline CLI::Validator whole_number(LONG least, LONG most) {
  const auto problem = [least, most](std::string& words) -> std::string {
    long long number = 0;
    const char* const end = words.data() + words.size();
    const auto [stop, error] = std::from_chars(words.data(), end, number);
    if (stop != end || error == std::errc::invalid_argument) return words + " is not a whole number";
    if (error != std::errc() || number < least || number > most) {
      return fmt::format("{} is not in the range {} to {}", words, least, most);
    }
    words = std::to_string(number);
    return {};
  };
  return {problem, {}};
}

inline void add_description_option(CLI::App& app, std::optional<std::string>& description) {
  app.add_option("--description", description, "what the table is, at most 64 characters")->type_name("TEXT");
}

inline CLI::Option* add_where_option(CLI::App& app, std::optional<std::string>& where) {
  return app.add_option("--where", where, "rows that meet this condition alone")->type_name("CONDITION");
}

/// An option that takes a list of names apart by commas.
inline void add_names_option(CLI::App& app, const std::string& flag, std::vector<std::string>& names,
                             const std::string& what) {
  app.add_option(flag, names, what)
      ->type_name("A,B,...")
      ->delimiter(',')
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

/// --columns, --where and --absent.
inline void add_row_options(CLI::App& app, row_options& options) {
  add_names_option(app, "--columns", options.columns, "these columns alone, in this order");
  add_where_option(app, options.where);
  app.add_option("--absent", options.absent, "what stands for an absent number (nothing by default)")
      ->type_name("TEXT");
}

}  // namespace command
