#include <windows.h>
// windows.h goes first.
#include "duckdb/duckdb_library_windows.cpp"
#include "environment_windows.cpp"
#include "loaded_library_windows.cpp"
#include "system_reason_windows.cpp"
