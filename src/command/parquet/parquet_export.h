// A table becomes a Parquet file, or a folder of them by the values of some columns.
#pragma once

#include <string>
#include <vector>

#include "sql/sql_options.h"
#include "table_options.h"

namespace command {

struct parquet_export_request {
  row_options rows;
  std::string target;
  std::vector<std::string> partition_by;
  sql_options options;
};

void export_parquet(const parquet_export_request& request);

}  // namespace command
