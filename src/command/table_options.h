// Options that commands have in common.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "arguments.h"

namespace command {

struct row_options {
  std::string table;
  std::vector<std::string> columns;
  std::string absent;
  std::optional<std::string> where;
};

inline void add_table_argument(const verb& owner, std::string& table) {
  owner.add_argument("table", table, "the table file").required();
}

inline void add_description_option(const verb& owner, std::optional<std::string>& description) {
  owner.add_option("--description", description, "what the table is, at most 64 characters")
      .type_name("TEXT");
}

inline option add_where_option(const verb& owner, std::optional<std::string>& where) {
  return owner.add_option("--where", where, "rows that meet this condition alone").type_name("CONDITION");
}

/// An option that takes a list of names apart by commas.
inline option add_names_option(const verb& owner, const std::string& flag, std::vector<std::string>& names,
                               const std::string& what) {
  return owner.add_list(flag, names, what).type_name("A,B,...");
}

/// --columns, --where and --absent.
inline void add_row_options(const verb& owner, row_options& options) {
  add_names_option(owner, "--columns", options.columns, "these columns alone, in this order");
  add_where_option(owner, options.where);
  owner.add_option("--absent", options.absent, "what stands for an absent number (nothing by default)")
      .type_name("TEXT");
}

}  // namespace command
