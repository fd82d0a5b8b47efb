// Text as a terminal shows it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace command {

/// Appends the text, a full stop for each control character, which would move the cursor or worse.
/// Returns how many characters it is wide.
std::size_t append_shown(std::string& out, std::string_view utf8);

}  // namespace command
