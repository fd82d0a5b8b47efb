// The files that may be DuckDB's library.
#pragma once

#include <string>

#include "duckdb/duckdb_abi.h"
#include "loaded_library.h"

namespace command {

/// The file that `load_duckdb` would load. Throws `failure` when there is none.
std::string find_duckdb();

/// Loads the file for good. Throws `failure` when it is no library of DuckDB that this program can use.
duckdb::functions load_duckdb_file(const std::string& path, binding functions);

/// The version without its "v", as in "1.5.6".
std::string duckdb_version(const duckdb::functions& library);

}  // namespace command
