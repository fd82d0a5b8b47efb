// What a table knows of itself and a Parquet file has no place for: kept in the file's own texts, so that a
// table that went out comes back as it was.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "implicit_field.h"
#include "sql/sql_database.h"
#include "table_view.h"

namespace command {

struct kept_field {
  std::string column;  ///< what the files call it
  planned_field field;
  bool implicit = false;
};

struct kept_definition {
  bool single = false;
  std::string description;
  std::vector<kept_field> fields;

  /// Null where there is no field that the files call so.
  const kept_field* find(const std::string& column) const noexcept;
};

/// As the option of a COPY that writes it, of these fields of the table, for which the files have `columns`.
std::string metadata_option(const table_view& view, const std::vector<field_view>& fields,
                            const std::vector<std::string>& columns);

/// What all files, which are patterns, say in the same words; empty where they have none, not all the same
/// columns, or none that can be read.
std::optional<kept_definition> read_metadata(sql_database& database, const std::vector<std::string>& files);

}  // namespace command
