#include <windows.h>
// windows.h goes first.
#include "../../src/command/duckdb_library_windows.cpp"
#include "../../src/command/environment_windows.cpp"
#include "../../src/command/loaded_library_windows.cpp"
#include "../../src/command/system_reason_windows.cpp"
