#include "console_linux.cpp"
#include "file_identity_linux.cpp"
#include "file_rights_linux.cpp"
#include "raw_file_linux.cpp"
