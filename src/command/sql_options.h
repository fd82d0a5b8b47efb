// Options of the commands that work through a database.
#pragma once

#include <string>

#include "sql_database.h"
#include "table_options.h"

namespace command {

struct sql_options {
  std::string memory;
  int threads = 0;
  std::string absent = "null";  ///< null, nan, keep, or the text that stands for NULL

  enum absent_value absent_value() const {
    if (absent == "nan") return command::absent_value::nan;
    return absent == "keep" ? command::absent_value::keep : command::absent_value::null;
  }
  /// What is written for NULL.
  std::string shown_absent() const {
    return absent == "null" || absent == "nan" || absent == "keep" ? std::string() : absent;
  }
  sql_settings settings() const { return {memory, threads, absent_value()}; }
};

/// --memory and --threads.
inline void add_sql_options(CLI::App& app, sql_options& options) {
  app.add_option("--memory", options.memory, "work with so much memory and put the rest on the disk")
      ->type_name("2GB");
  app.add_option("--threads", options.threads, "work with so many threads")
      ->type_name("N")
      ->transform(whole_number(1, 1024));
}

}  // namespace command
