// Whether a file that is to be loaded as DuckDB's library is whole.
//
// The library that `ovfile setup sql` fetches is known by its digest, which no damage escapes. Of any other
// nothing is known beforehand: another process tries it, which finds what shows in the parts that questions
// mostly go through. Both take some tenths of a second, so a file that was found good is noted and not looked
// at again while it stays the same.
#pragma once

#include <string>

#include "duckdb/duckdb_trial.h"

namespace command {

/// Returns when the file may be loaded, also one of which `load_duckdb_file` tells better what is wrong.
/// Throws `failure`, which tells how to get another, and `interrupted`.
void check_duckdb(const std::string& path);

/// Both ways to look at it, and nothing is noted. Throws as `try_duckdb` does.
duckdb_trial look_at_duckdb(const std::string& path);

}  // namespace command
