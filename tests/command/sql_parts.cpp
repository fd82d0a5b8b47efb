// The parts of the command that questions in SQL go through and that need no database, compiled into this
// program like the others.
#include "../../src/command/sql_statements.cpp"
#include "../../src/command/unique_names.cpp"
