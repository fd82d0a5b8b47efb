// The table function read_ovt(FILE, condition := TEXT, absent := 'null'|'nan'|'keep', widen := BOOLEAN) of
// the SQL database, and what lets the bare name of a table file stand for it.
//
// Several threads read one table, each by an object of its own and range of rows after range of rows, of the
// columns that the query needs alone. Where a query keeps the order of rows, the rows come in the table's.
#pragma once

#include <string>
#include <vector>

#include "duckdb/duckdb_abi.h"
#include "field_view.h"

namespace command {

enum class absent_value;
class row_count;
class scan_failure;

/// What SQL, and so the files that it makes, call these fields: they take AU and Au for the same.
std::vector<std::string> sql_names(const std::vector<field_view>& fields);

/// Makes both known to a database. `absent` is what stands where a call does not say it. `rows` receives how
/// many are read and `failed` why some could not be; both must outlive the database. Throws `failure`.
void define_read_ovt(const duckdb::functions& library, duckdb::database database,
                     duckdb::connection connection, absent_value absent, row_count& rows,
                     scan_failure& failed);

}  // namespace command
