#include "sql/widened_float.h"

#include <fast_float/fast_float.h>

#include <charconv>
#include <cmath>

namespace command {

double widened(float value) noexcept {
  constexpr float largest_whole = 16777216;
  if (std::fabs(value) <= largest_whole && std::trunc(value) == value) return static_cast<double>(value);
  if (!std::isfinite(value)) return static_cast<double>(value);
  char digits[32];
  // Without an exponent large numbers would have all their digits.
  const char* const end =
      std::to_chars(digits, digits + sizeof digits, value, std::chars_format::scientific).ptr;
  double number = 0;
  fast_float::from_chars(digits, end, number);
  return number;
}

bool fits_float(double value) noexcept {
  const auto single = static_cast<float>(value);
  return std::isnan(value) || static_cast<double>(single) == value || widened(single) == value;
}

}  // namespace command
