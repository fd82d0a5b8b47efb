#include "encoding.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>

#include "console.h"

namespace command {
namespace {

/// What the bytes 0x80 to 0x9F of Windows-1252 stand for.
constexpr char16_t upper_controls[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                         0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                         0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                         0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr std::uint64_t high_bits = 0x8080808080808080u;

}  // namespace

bool in_windows_1252(char32_t character) noexcept {
  if (character < 0x80 || (character >= 0xA0 && character <= 0xFF)) return true;
  return std::find(std::begin(upper_controls), std::end(upper_controls), character) !=
         std::end(upper_controls);
}

bool is_ascii(std::string_view text) noexcept {
  const char* at = text.data();
  std::size_t left = text.size();
  std::uint64_t seen = 0;
  for (; left >= 8; left -= 8, at += 8) {
    std::uint64_t eight;
    std::memcpy(&eight, at, 8);
    seen |= eight;
  }
  for (; left > 0; --left, ++at) seen |= static_cast<unsigned char>(*at);
  return (seen & high_bits) == 0;
}

utf8_facts look_at_utf8(std::string_view text) {
  utf8_facts facts;
  while (!text.empty()) {
    bool valid = true;
    const char32_t character = ovfile::take_utf8(text, valid);
    if (!valid) facts.valid = false;
    if (facts.foreign == 0 && valid && !has_ansi_place(character)) facts.foreign = character;
    ++facts.characters;
  }
  return facts;
}

encoding encoding_of(std::string_view text) {
  return is_ascii(text) || look_at_utf8(text).valid ? encoding::utf8 : encoding::windows_1252;
}

void append_wide(ovfile::wide_string& out, std::string_view text, encoding from) {
  if (from == encoding::utf8) {
    ovfile::append_wide(out, text);
    return;
  }
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    const bool moved = byte >= 0x80 && byte < 0xA0;
    out.push_back(static_cast<OLECHAR>(moved ? upper_controls[byte - 0x80] : byte));
  }
}

std::string to_utf8(std::string_view text, encoding from) {
  if (from == encoding::utf8) return std::string(text);
  ovfile::wide_string wide;
  append_wide(wide, text, from);
  return ovfile::to_utf8(wide);
}

}  // namespace command
