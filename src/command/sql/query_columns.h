// The columns of a query as SQL asks for them, on their way into a table.
#pragma once

#include <string>
#include <vector>

#include "sql/query_stream.h"
#include "sql/query_table.h"

namespace command {

/// The source, which stands behind FROM, under our own names; what stands for absent values is NULL there.
std::string cleaned(const std::string& source, const std::vector<sql_column>& columns,
                    const query_table_request& request);

/// What a column needs of a table, as an aggregate that gives a double: below 0 a number, else text of so
/// many characters. `type_name` is the type as SQL writes it.
std::string need_of(const std::string& column, duckdb::type_id type, const std::string& type_name);

/// Whether single precision keeps what the column's numbers say, as an aggregate that is null for no values.
std::string fits_single(const std::string& column, duckdb::type_id type);

/// Whether the type's values are numbers, of which a double holds at least some.
bool is_numeric(duckdb::type_id type) noexcept;

/// A float as text: a whole one without the point that the library writes.
std::string float_as_text(const std::string& value);

/// The query that gives each column as the table takes it.
std::string select_values(const std::vector<stream_column>& columns, const std::string& from);

}  // namespace command
