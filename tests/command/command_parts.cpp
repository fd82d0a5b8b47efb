// The parts of the command that have tests of their own are compiled into this program: the command is a
// program, not a library.
#include "csv_input.cpp"
#include "csv_reader.cpp"
#include "decimal.cpp"
#include "encoding.cpp"
#include "field_names.cpp"
#include "kind_words.cpp"
#include "number_stats.cpp"
#include "raw_file.cpp"
#include "text_counter.cpp"
