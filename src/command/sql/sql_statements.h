// Several statements in one text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace command {

/// The statements without the semicolons between them; comments stay where they stand, and what is blank or
/// comment alone is left out. A quote or a comment that does not end reaches to the text's end.
std::vector<std::string> split_statements(std::string_view sql);

}  // namespace command
