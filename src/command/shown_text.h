// Text of a file as a terminal may have it: what would move the cursor, or worse, stands there as a full
// stop.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace command {

/// C0, DEL and C1.
constexpr bool is_control(std::uint32_t character) noexcept {
  return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

/// Appends a value, and returns how many characters it is wide.
std::size_t append_shown(std::string& out, std::string_view utf8);

/// A text of several lines, which keeps its tabs and line feeds.
std::string shown_lines(std::string_view utf8);

}  // namespace command
