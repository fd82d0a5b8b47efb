// The ANSI code page on systems that have none: Windows-1252. Its five holes stand for the control
// characters of the same number, as they do on Windows, so that every byte survives.
#include <array>

#include "base/text.h"

namespace ovf {

namespace {

constexpr std::size_t first_special = 0x80;
constexpr std::array<char16_t, 32> specials{0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                            0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                            0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                            0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char special_byte(char16_t unit) {
  for (std::size_t i = 0; i < specials.size(); ++i) {
    if (specials[i] == unit) return static_cast<char>(first_special + i);
  }
  return '?';
}

}  // namespace

wide wide_from_ansi(std::string_view text) {
  wide result(text.size(), u'\0');
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const std::size_t special = byte - first_special;
    result[i] = special < specials.size() ? specials[special] : static_cast<char16_t>(byte);
  }
  return result;
}

std::string ansi_from_wide(wide_view text) {
  std::string result(text.size(), '\0');
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t unit = text[i];
    const bool same = unit < 0x80 || (unit >= 0xA0 && unit < 0x100);
    result[i] = same ? static_cast<char>(unit) : special_byte(unit);
  }
  return result;
}

}  // namespace ovf
