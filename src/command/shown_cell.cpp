#include "shown_cell.h"

#include <cstdint>

#include "ovfile/smart.h"

namespace command {

std::size_t append_shown(std::string& out, std::string_view utf8) {
  std::size_t length = 0;
  bool valid = true;
  while (!utf8.empty()) {
    const std::string_view before = utf8;
    const std::uint32_t c = ovfile::take_utf8(utf8, valid);
    const bool control = c < 0x20 || (c >= 0x7F && c < 0xA0);
    out += control ? "." : before.substr(0, before.size() - utf8.size());
    ++length;
  }
  return length;
}

}  // namespace command
