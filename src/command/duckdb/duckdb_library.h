// DuckDB's shared library, found and loaded when a command needs it. The command does not depend on it:
// without it every other command works.
#pragma once

#include <string>

#include "duckdb/duckdb_abi.h"

namespace command {

/// Where the library is looked for: the file or folder that OVFILE_DUCKDB names and nowhere else when that is
/// set, then beside the program, then in the user's data folder, where `ovfile setup sql` puts it.
/// Loads it once, when it is found whole; it stays loaded until the process ends. Throws `failure`, which
/// tells how to get the library when there is none, and what is wrong with one that cannot be used, and
/// `interrupted`.
const duckdb::functions& load_duckdb();

/// The folder of the user's data for this program; it may not exist. Throws `failure` when the
/// system does not tell the user's folder.
std::string user_data_folder();

/// What the library's file is called here.
extern const char* const duckdb_file_name;

}  // namespace command
