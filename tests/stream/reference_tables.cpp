#include "golden/reference_files.cpp"
