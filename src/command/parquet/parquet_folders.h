// Folders of Parquet files, and the columns that stand in their names: ZONE=7/BENCH=100/data_0.parquet.
#pragma once

#include <string>
#include <vector>

#include "sql/sql_database.h"

namespace command {

/// A column of which each folder has one value in its name.
struct folder_column {
  std::string name;
  std::string text;  ///< a row's value, or NULL, as SQL takes it out of the name of the row's file
};

struct parquet_folder {
  std::vector<std::string> files;  ///< in the order of their names, as patterns
  std::vector<std::string> shown;  ///< the same as messages call them
  std::vector<folder_column> columns;
};

/// The column of the files' rows that has their names, where they are asked for them.
constexpr const char* file_name_column = "ovfile:file";

/// A name may have what the library takes for a pattern.
std::string as_pattern(const std::string& name);

/// The Parquet files in a folder and those in it at any depth; hidden ones are not meant. Only the folders
/// below it have columns: where it stands is its owner's affair. Throws `failure` where there are no files or
/// their folders' columns differ.
parquet_folder open_folder(sql_database& database, const std::string& name);

}  // namespace command
