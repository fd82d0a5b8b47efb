// The parts of the command that find and load DuckDB's library, and those that check a package, compiled into
// this program like the others.
#include "duckdb/duckdb_file.cpp"
#include "duckdb/duckdb_library.cpp"
#include "duckdb/sha512.cpp"
