#include "duckdb/duckdb_library_linux.cpp"
#include "environment_linux.cpp"
#include "loaded_library_linux.cpp"
