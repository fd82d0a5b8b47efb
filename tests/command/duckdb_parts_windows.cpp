#include <windows.h>
// windows.h goes first.
#include "child_process_windows.cpp"
#include "duckdb/crash_report_windows.cpp"
#include "duckdb/duckdb_library_windows.cpp"
#include "duckdb/duckdb_package_windows.cpp"
#include "environment_windows.cpp"
#include "loaded_library_windows.cpp"
#include "private_folder_windows.cpp"
#include "system_reason_windows.cpp"
