// Numbers as texts and back, the same in every locale.
#pragma once

#include <cstddef>

#include "filter/characters.h"

namespace ovf::filter {

enum class number_reading {
  number,
  no_number,
  too_large  ///< beyond the range of a double
};

/// A text that is a decimal number from its first to its last character (blanks around it do not count).
/// The words for what is infinite or no number are none. Correctly rounded; what is too small for a double
/// is 0.
number_reading read_number(wide_view text, double& number);

/// Room for the text of any number.
struct number_text {
  OLECHAR units[32];
  std::size_t length = 0;

  wide_view view() const noexcept { return {units, length}; }
};

/// At most 15 digits, as variants are changed to text: 0.1, 1E+20, -INF. Not for NaN.
number_text write_number(double number) noexcept;

}  // namespace ovf::filter
