/* The module's string resources by number: compiled into the string table on Windows, looked up by
   platform/module_linux.cpp on Linux. Also read by the resource compiler, hence macros. */
#define OVFILE_STRING_100 "OvFile"
#define OVFILE_STRING_101 "SetColumn failed, file is open in read-only mode"
