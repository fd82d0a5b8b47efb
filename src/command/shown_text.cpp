#include "shown_text.h"

#include <algorithm>

#include "ovfile/smart.h"

namespace command {
namespace {

/// Where nothing is to be replaced for certain: every control character begins with such a byte.
bool may_be_control(char c) noexcept { return is_control(static_cast<unsigned char>(c)) || c == '\xC2'; }

template <class Kept>
std::size_t append(std::string& out, std::string_view utf8, Kept is_kept) {
  std::size_t length = 0;
  bool valid = true;
  while (!utf8.empty()) {
    const std::string_view before = utf8;
    std::uint32_t c = ovfile::take_utf8(utf8, valid);
    // A file's name may be no UTF-8, and some terminals take the bytes of C1 by themselves.
    if (!valid) c = static_cast<unsigned char>(before.front());
    const bool replaced = is_control(c) && !is_kept(c);
    out += replaced ? "." : before.substr(0, before.size() - utf8.size());
    ++length;
  }
  return length;
}

}  // namespace

std::size_t append_shown(std::string& out, std::string_view utf8) {
  return append(out, utf8, [](std::uint32_t) { return false; });
}

std::string shown_lines(std::string_view utf8) {
  const auto is_kept = [](std::uint32_t c) { return c == '\t' || c == '\n'; };
  const bool is_fit = std::none_of(utf8.begin(), utf8.end(), [&](char c) {
    return may_be_control(c) && !is_kept(static_cast<unsigned char>(c));
  });
  if (is_fit) return std::string(utf8);
  std::string out;
  append(out, utf8, is_kept);
  return out;
}

}  // namespace command
