// The rows of an open table, cell by cell and bit by bit.
#pragma once

#include "golden/complaint.h"
#include "support/component.h"
#include "support/expected_reading.h"

namespace ovtest {

/// Walks to every row that is expected, compares it, and walks off the end where the last row is known.
void check_rows(comparison& compare, IOvTable& table, const expected_reading& expected);

}  // namespace ovtest
