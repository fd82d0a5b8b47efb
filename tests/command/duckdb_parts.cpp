// The parts of the command that find and load DuckDB's library, and those that check a package, compiled into
// this program like the others.
#include "../../src/command/duckdb_file.cpp"
#include "../../src/command/duckdb_library.cpp"
#include "../../src/command/sha512.cpp"
