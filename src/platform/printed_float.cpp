#include "platform/printed_float.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string>
#include <string_view>

#include "platform/variant.h"

namespace ovf {
namespace {

constexpr int digits_read = 7;

/// The long road, which decides exact halves as the texts do.
double value_of_text(float value) {
  const wide printed = to_text(variant(value));
  const variant text{wide_view(printed)};
  return to_double(text);
}

/// digits × 10^power, correctly rounded.
double scaled(std::uint32_t digits, int power, bool negative) {
  // Whole numbers and powers of ten up to here are doubles, so that one operation rounds once.
  constexpr int exact = 22;
  static const std::array<double, exact + 1> tens = [] {
    std::array<double, exact + 1> list{1};
    for (std::size_t i = 1; i < list.size(); ++i) list[i] = list[i - 1] * 10;
    return list;
  }();
  double value = digits;
  if (power >= 0 && power <= exact) {
    value *= tens[static_cast<std::size_t>(power)];
  } else if (power < 0 && power >= -exact) {
    value /= tens[static_cast<std::size_t>(-power)];
  } else {
    const std::string text = std::to_string(digits) + 'e' + std::to_string(power);
    std::from_chars(text.data(), text.data() + text.size(), value);
  }
  return negative ? -value : value;
}

}  // namespace

double printed_value(float value) {
  if (value == 0.0F || !std::isfinite(value)) return static_cast<double>(value);
  // More digits than are read, so that it shows on which side of a half the number lies.
  constexpr int digits_seen = 17;
  constexpr std::string_view half = "5000000000";
  std::array<char, 40> text;
  const char* end =
      std::to_chars(text.data(), text.data() + text.size(), std::abs(static_cast<double>(value)),
                    std::chars_format::scientific, digits_seen - 1)
          .ptr;
  // D.DDDDDDDDDDDDDDDDe±XX
  const std::string_view rest(text.data() + 1 + digits_read, half.size());
  if (rest == half) return value_of_text(value);
  std::uint32_t digits = static_cast<std::uint32_t>(text[0] - '0');
  for (int i = 1; i < digits_read; ++i) {
    digits = digits * 10 + static_cast<std::uint32_t>(text[static_cast<std::size_t>(i) + 1] - '0');
  }
  if (rest > half) ++digits;
  const char* mark = std::find(static_cast<const char*>(text.data()), end, 'e') + 1;
  int power = 0;
  std::from_chars(mark + (*mark == '+' ? 1 : 0), end, power);
  return scaled(digits, power - (digits_read - 1), value < 0.0F);
}

}  // namespace ovf
