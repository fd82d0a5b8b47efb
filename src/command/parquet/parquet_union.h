// Parquet files of which some have other columns than others, as one set of rows.
#pragma once

#include <string>
#include <vector>

#include "parquet/parquet_folders.h"
#include "sql/sql_database.h"

namespace command {

/// Files as a list of texts in SQL.
std::string list_of(const std::vector<std::string>& files);

/// All rows of the files, in their order, as what stands behind FROM. A column that not all files have is
/// NULL elsewhere, which `notes` receives. One that has several types is double where that holds all its
/// values, else text. The files' own names are one column more where the folders have columns. Throws what
/// sql_database.h lists.
std::string rows_of(sql_database& database, const parquet_folder& folder, std::vector<std::string>& notes);

}  // namespace command
