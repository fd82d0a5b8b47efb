// Holds an open table against what reading it must give, through the published interfaces alone.
#pragma once

#include "support/component.h"
#include "support/expected_reading.h"

namespace ovtest {

/// Facts, header words, fields, and every row that is expected, cell by cell and bit by bit; then the
/// run off the end. Failures name file, row, column, what was expected and what was received.
void check_reading(IOvTable& table, const expected_reading& expected);

/// Ranges, signatures and the kind of table: on a table that was opened just now. Returns how many values
/// were compared, as the methods may not exist yet.
int check_derived(IOvTable& table, const expected_reading& expected);

}  // namespace ovtest
