// What a variable, a constant or a result is: a number, a text, a text that also reads as a number, or
// absent.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

#include "filter/characters.h"

namespace ovf::filter {

constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();

/// What is known of the kind of a value.
enum class origin : std::uint8_t {
  any,         ///< a number; or one of a list, where a number looks like a text that reads as one
  text_field,  ///< known to be a text
  quoted       ///< a text of the expression
};

struct value {
  double number = not_a_number;   ///< NaN where it is none, so that arithmetic hands absence on
  const OLECHAR* text = nullptr;  ///< null where it is none; without blanks at its end
  std::size_t length = 0;
  origin from = origin::any;

  wide_view view() const noexcept { return {text, length}; }
  bool is_absent() const noexcept { return length == 0 && std::isnan(number); }
};

inline value number_value(double number) noexcept { return {number, nullptr, 0, origin::any}; }
inline value truth_value(bool truth) noexcept { return number_value(truth ? 1 : 0); }

/// Looks into `text` for as long as it is used. A text of blanks alone is absent.
value text_value(wide_view text, origin from);

/// Absent values and texts count as no.
inline bool is_true(const value& of) noexcept { return of.number != 0 && !std::isnan(of.number); }

enum class relation : std::uint8_t { equal, unequal, less, less_or_equal, greater, greater_or_equal };

/// What two values are compared as. `either`: texts when both are known to be, or one is quoted; else
/// numbers when both are, else texts.
enum class manner : std::uint8_t { numbers, texts, either };

/// No for an absent value, and for one that is not of the kind that the manner asks for. A quoted text
/// without characters is less than every text that is there.
inline bool holds(relation asked, double left, double right) noexcept {
  switch (asked) {
    case relation::equal:
      return left == right;
    case relation::unequal:
      return left < right || left > right;
    case relation::less:
      return left < right;
    case relation::less_or_equal:
      return left <= right;
    case relation::greater:
      return left > right;
    case relation::greater_or_equal:
      return left >= right;
  }
  return false;
}
bool holds(relation asked, manner as, const value& left, const value& right) noexcept;

}  // namespace ovf::filter
