// windows.h goes first.
#include "console_windows.cpp"
#include "file_identity_windows.cpp"
#include "raw_file_windows.cpp"
