// Options that commands which show rows have in common.
#pragma once

#include <string>
#include <vector>

#include "commands.h"

namespace command {

struct row_options {
  std::string table;
  std::vector<std::string> columns;
  std::string absent;
};

inline void add_table_argument(CLI::App& app, std::string& table) {
  app.add_option("table", table, "the table file")->required();
}

/// --columns and --absent.
inline void add_row_options(CLI::App& app, row_options& options) {
  app.add_option("--columns", options.columns, "these columns alone, in this order")
      ->type_name("A,B,...")
      ->delimiter(',')
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  app.add_option("--absent", options.absent, "what stands for an absent number (nothing by default)")
      ->type_name("TEXT");
}

}  // namespace command
