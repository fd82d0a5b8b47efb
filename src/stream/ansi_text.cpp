#include "stream/ansi_text.h"

#include <algorithm>

#include "base/text.h"
#include "ovfile/smart.h"

namespace ovf {

ansi_page::ansi_page() {
  for (unsigned value = 0; value < characters_.size(); ++value) {
    const char byte = static_cast<char>(static_cast<unsigned char>(value));
    const wide units = wide_from_ansi({&byte, 1});
    const std::string utf8 = utf8_from_wide(units);
    // A byte that begins a longer character does not come back from what it gives by itself.
    if (units.size() != 1 || utf8.size() > growth || ansi_from_wide(units) != std::string_view(&byte, 1)) {
      has_tables_ = false;
      return;
    }
    character& made = characters_[value];
    std::ranges::copy(utf8, made.bytes.begin());
    made.length = static_cast<std::uint8_t>(utf8.size());
    if (value >= 0x80) bytes_.emplace_back(static_cast<std::uint16_t>(units.front()), byte);
  }
  std::ranges::sort(bytes_);
}

std::size_t ansi_page::to_utf8(std::string_view text, char* out) const {
  if (!has_tables_) {
    const std::string utf8 = utf8_from_wide(wide_from_ansi(text));
    std::ranges::copy(utf8, out);
    return utf8.size();
  }
  char* end = out;
  for (const char byte : text) {
    const character& found = characters_[static_cast<unsigned char>(byte)];
    for (std::size_t i = 0; i < found.length; ++i) *end++ = found.bytes[i];
  }
  return static_cast<std::size_t>(end - out);
}

ansi_page::outcome ansi_page::from_utf8(std::string_view text, std::string& out) const {
  if (is_ascii(text)) {
    out.assign(text);
    return outcome::done;
  }
  if (!has_tables_) return from_wide_page(text, out);
  out.clear();
  bool in_page = true;
  while (!text.empty()) {
    bool valid = true;
    const std::uint32_t code = ovfile::take_utf8(text, valid);
    if (!valid) return outcome::not_utf8;
    const auto found = std::ranges::lower_bound(bytes_, code, {}, &std::pair<std::uint32_t, char>::first);
    if (code < 0x80) {
      out.push_back(static_cast<char>(code));
    } else if (found != bytes_.end() && found->first == code) {
      out.push_back(found->second);
    } else {
      in_page = false;
    }
  }
  return in_page ? outcome::done : outcome::not_in_page;
}

ansi_page::outcome ansi_page::from_wide_page(std::string_view text, std::string& out) const {
  for (std::string_view rest = text; !rest.empty();) {
    bool valid = true;
    (void)ovfile::take_utf8(rest, valid);
    if (!valid) return outcome::not_utf8;
  }
  const wide units = wide_from_utf8(text);
  out = ansi_from_wide(units);
  return wide_from_ansi(out) == units ? outcome::done : outcome::not_in_page;
}

}  // namespace ovf
