// The fields of an open table's schema.
#pragma once

#include "golden/complaint.h"
#include "support/component.h"
#include "support/expected_reading.h"

namespace ovtest {

void check_fields(comparison& compare, IOvTable& table, const expected_reading& expected);

}  // namespace ovtest
