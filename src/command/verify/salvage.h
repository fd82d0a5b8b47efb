// What can be read of a table, in a new one.
#pragma once

#include <string>

#include "verify/table_check.h"

namespace command {

/// Makes a table of all rows that can be read. Numbers that are none become absent. Returns how many rows it
/// has. Throws `failure`.
LONG salvage(const std::string& file, const check_result& found, const std::string& target);

}  // namespace command
