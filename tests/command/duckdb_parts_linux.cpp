#include "../../src/command/duckdb_library_linux.cpp"
#include "../../src/command/environment_linux.cpp"
#include "../../src/command/loaded_library_linux.cpp"
