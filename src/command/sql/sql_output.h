// The rows of a query in the forms that a command writes.
#pragma once

#include <string>

#include "sql/sql_rows.h"
#include "text_output.h"

namespace command {

enum class row_format { table, csv, json };

/// Writes all rows; `absent` stands for NULL in a table and a CSV. Does not finish the output.
void write_rows(sql_rows& rows, row_format format, const std::string& absent, text_output& output);

}  // namespace command
