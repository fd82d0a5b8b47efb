// The columns whose values become the names of folders.
#pragma once

#include <string>
#include <vector>

#include "field_view.h"
#include "sql/sql_database.h"

namespace command {

struct partition_column {
  std::string field;  ///< what the table calls it
  std::string name;   ///< what the files call it
  bool is_text;
};

/// `wanted` are names of fields; the files have `names` for `fields`. Throws `wrong_usage` when one of them
/// is not among the fields or comes twice, or none of the fields would be left for the files.
std::vector<partition_column> partition_columns(const std::vector<std::string>& wanted,
                                                const std::vector<field_view>& fields,
                                                const std::vector<std::string>& names);

/// As the option of a COPY.
std::string partition_option(const std::vector<partition_column>& columns);

/// Throws `failure`, which names `table`, when the rows of the query have a text that cannot be the name of a
/// folder: readers would take it for no value, it is too long, or its folder would be another one's where the
/// case of letters does not count.
void check_folder_names(sql_database& database, const std::string& query, const std::string& table,
                        const std::vector<partition_column>& columns);

}  // namespace command
