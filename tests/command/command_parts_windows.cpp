// windows.h goes first.
#include "../../src/command/console_windows.cpp"
#include "../../src/command/file_identity_windows.cpp"
#include "../../src/command/raw_file_windows.cpp"
