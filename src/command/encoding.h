// The two encodings that a text from outside may have: UTF-8, and Windows-1252 where it is no UTF-8. Each
// cell of a CSV is taken by itself: files that were put together from several have both.
#pragma once

#include <string>
#include <string_view>

#include "ovfile/smart.h"

namespace command {

enum class encoding { utf8, windows_1252 };

/// Whether Windows-1252 has the character. Its five free bytes (0x81, 0x8D, 0x8F, 0x90, 0x9D) stand for
/// the control characters of the same number.
bool in_windows_1252(char32_t character) noexcept;

/// Whether all bytes are below 0x80.
bool is_ascii(std::string_view text) noexcept;

/// What a text is when it is taken for UTF-8.
struct utf8_facts {
  bool valid = true;
  std::size_t characters = 0;
  char32_t foreign = 0;  ///< the first character that cannot be stored; 0: there is none
};
utf8_facts look_at_utf8(std::string_view text);

encoding encoding_of(std::string_view text);

/// A text of either encoding as UTF-16, appended.
void append_wide(ovfile::wide_string& out, std::string_view text, encoding from);
/// A text of either encoding as UTF-8.
std::string to_utf8(std::string_view text, encoding from);

}  // namespace command
