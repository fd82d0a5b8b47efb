// The parts of the command that have tests of their own are compiled into this program: the command is a
// program, not a library.
#include "../../src/command/csv_input.cpp"
#include "../../src/command/csv_reader.cpp"
#include "../../src/command/decimal.cpp"
#include "../../src/command/encoding.cpp"
#include "../../src/command/field_names.cpp"
#include "../../src/command/kind_words.cpp"
#include "../../src/command/number_stats.cpp"
#include "../../src/command/raw_file.cpp"
#include "../../src/command/text_counter.cpp"
