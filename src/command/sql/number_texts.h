// Texts of a query that read as numbers.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "sql/sql_database.h"

namespace command {

/// A line that names the columns of texts in which each value reads as a number; nothing where there are
/// none. Where one of `statements` reads a CSV or its like they are likely numbers: DuckDB takes a column for
/// text that is empty where it looks, and what is text in one of two tables is text in their union. `from`
/// has the columns under our own names. Throws what sql_database.h lists.
std::optional<std::string> note_number_texts(sql_database& database,
                                             const std::vector<std::string>& statements,
                                             const std::string& from, const std::vector<sql_column>& columns);

}  // namespace command
