// The parts of the command that questions in SQL go through and that need no database, compiled into this
// program like the others.
#include "sql/copy_target.cpp"
#include "sql/sql_statements.cpp"
#include "unique_names.cpp"
