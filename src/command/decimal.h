// When a text is a number, and whether a number keeps all that its text says. Numbers are decimal, with a
// full stop; nothing here asks the process's locale.
#pragma once

#include <string_view>

namespace command {

/// Of ASCII's.
constexpr bool is_digit(char c) noexcept { return c >= '0' && c <= '9'; }

/// Without the blanks and tabs at both ends.
std::string_view without_blanks(std::string_view text) noexcept;

/// What a cell holds, seen by itself.
struct number_cell {
  bool is_number = false;  ///< a double says what the text says
  double value = 0;
};

/// A number is an optional minus, digits with at most one full stop among them, and an optional exponent;
/// blanks and tabs around it do not count. No number: a plus in front, a leading zero before another
/// digit, hexadecimal digits, `nan`, `inf`, a value beyond a double's range, and more digits than a double
/// holds, which is when the double, written with as many digits, reads otherwise.
number_cell read_number(std::string_view text) noexcept;

/// Why a text is no number, in words that follow it.
const char* number_problem(std::string_view text) noexcept;

/// The float nearest to the text of a number. `kept`: the float, written with as many digits as the text
/// has, reads the same. Infinite where the value is beyond a float's range.
float read_float(std::string_view text, bool& kept) noexcept;

}  // namespace command
