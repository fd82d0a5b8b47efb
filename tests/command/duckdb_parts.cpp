// The parts of the command that find, check and load DuckDB's library, and those that check a package,
// compiled into this program like the others.
#include "child_process.cpp"
#include "duckdb/duckdb_check.cpp"
#include "duckdb/duckdb_file.cpp"
#include "duckdb/duckdb_library.cpp"
#include "duckdb/duckdb_trial.cpp"
#include "duckdb/good_libraries.cpp"
#include "duckdb/sha512.cpp"
#include "made_folders.cpp"
#include "replacement.cpp"
