// What can be read of a table, in a new one.
#pragma once

#include <string>

#include "verify/table_check.h"

namespace command {

/// Makes a table of all rows that can be read, and says how many they are, which are lost, and in which
/// numbers that are none became absent. Throws `failure`.
void salvage(const std::string& file, const check_result& found, const std::string& target);

}  // namespace command
