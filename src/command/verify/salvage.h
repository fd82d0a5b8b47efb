// What can be read of a table, in a new one.
#pragma once

#include <string>

#include "verify/table_check.h"

namespace command {

/// Makes a table of all rows that can be read, and says how many they are and which are lost. Numbers that
/// are none become absent. Throws `failure`.
void salvage(const std::string& file, const check_result& found, const std::string& target);

}  // namespace command
