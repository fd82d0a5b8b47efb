// What the characters of expressions and values are, and the texts that the evaluator works on.
#pragma once

#include <string>
#include <string_view>

#include "filter/foreign_signs.h"
#include "ovfile/component.h"

namespace ovf::filter {

using wide = std::basic_string<OLECHAR>;
using wide_view = std::basic_string_view<OLECHAR>;

constexpr unsigned code_of(OLECHAR c) noexcept { return static_cast<unsigned>(c); }

/// What stands between the words of an expression.
constexpr bool is_space(OLECHAR c) noexcept {
  const unsigned code = code_of(c);
  return code == ' ' || (code >= '\t' && code <= '\r') || code == 0xA0;
}

/// A character of a value that stands for nothing at its end: what tables drop when a text is stored.
constexpr bool is_blank(OLECHAR c) noexcept { return code_of(c) == ' ' || code_of(c) == '\t'; }

constexpr bool is_digit(OLECHAR c) noexcept { return code_of(c) >= '0' && code_of(c) <= '9'; }

constexpr OLECHAR lower_case(OLECHAR c) noexcept {
  return code_of(c) >= 'A' && code_of(c) <= 'Z' ? static_cast<OLECHAR>(code_of(c) + 32) : c;
}

/// `word` is in lower case.
constexpr bool equal_without_case(wide_view text, std::string_view word) noexcept {
  if (text.size() != word.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (code_of(lower_case(text[i])) != static_cast<unsigned char>(word[i])) return false;
  }
  return true;
}

/// Whether a name may begin with it. Beyond ASCII all but signs.
constexpr bool begins_name(OLECHAR c) noexcept {
  const unsigned letter = code_of(lower_case(c));
  if (letter >= 0x80) return !is_foreign_sign(letter);
  return (letter >= 'a' && letter <= 'z') || letter == '_' || letter == '#' || letter == '$' || letter == '%';
}

constexpr bool continues_name(OLECHAR c) noexcept {
  return begins_name(c) || is_digit(c) || code_of(c) == '.' || code_of(c) == '@';
}

/// Blanks at the end of a value do not count.
constexpr wide_view without_end_blanks(wide_view text) noexcept {
  while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
  return text;
}

}  // namespace ovf::filter
