// A Parquet file, or a folder of them, becomes a table.
#pragma once

#include "import_request.h"
#include "sql/sql_options.h"

namespace command {

/// `request.csv` is the file or folder.
void import_parquet(const import_request& request, const sql_options& options);

}  // namespace command
