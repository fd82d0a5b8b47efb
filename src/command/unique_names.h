// Names of columns for those who cannot do with the same name twice.
#pragma once

#include <string>
#include <vector>

namespace command {

enum class letter_case { counts, does_not_count };

/// The names, each different from all others: of equal ones the first stays and the others get _2, _3 and so
/// on; a column without a name is called COL and its number. Letters beyond a to z always count as they are.
std::vector<std::string> unique_names(const std::vector<std::string>& names, letter_case letters);

}  // namespace command
