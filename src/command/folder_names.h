// The names of what lies in a folder.
#pragma once

#include <string>
#include <vector>

namespace command {

/// In no order, as UTF-8; none of a folder that cannot be read. (The standard library's iterator ends the
/// process where there is not enough memory.)
std::vector<std::string> names_in_folder(const std::string& folder);

}  // namespace command
