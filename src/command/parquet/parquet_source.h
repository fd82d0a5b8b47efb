// A Parquet file, or a folder of them, as rows and columns of the SQL database.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "parquet/parquet_metadata.h"
#include "sql/sql_database.h"

namespace command {

/// What is read: its rows and columns as SQL sees them, and what the files tell of the table that they come
/// from.
struct parquet_source {
  std::string rows;  ///< stands behind FROM
  std::vector<sql_column> columns;
  std::optional<kept_definition> kept;
  std::vector<std::string> notes;  ///< for the user
};

/// `name` is a file, or a folder whose files are found at any depth; what the names of the folders below it
/// tell are columns too. One that the files have as well must have the same values there. Throws `failure`,
/// also with the library's own words.
parquet_source open_source(sql_database& database, const std::string& name);

/// Puts the columns in the order that the table had, with those behind them that it did not have.
void put_in_order(parquet_source& source);

}  // namespace command
