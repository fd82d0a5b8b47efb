#include "../../src/command/console_linux.cpp"
#include "../../src/command/file_identity_linux.cpp"
#include "../../src/command/file_rights_linux.cpp"
#include "../../src/command/raw_file_linux.cpp"
