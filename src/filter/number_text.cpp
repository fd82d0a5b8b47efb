#include "filter/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <system_error>

namespace ovf::filter {

namespace {

wide_view without_blanks(wide_view text) noexcept {
  while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
  return text;
}

bool occurs_in_numbers(OLECHAR c) noexcept {
  const unsigned code = code_of(c);
  return is_digit(c) || code == '.' || code == '-' || code == '+' || code == 'e' || code == 'E';
}

/// Whether a number that is out of range is one near 0: the sign of its decimal exponent tells.
bool is_tiny(std::string_view digits) noexcept {
  const std::size_t mark = std::min(digits.find_first_of("eE"), digits.size());
  const std::size_t point = std::min(digits.find('.'), mark);
  const std::size_t first = digits.find_first_of("123456789");
  if (first >= mark) return true;
  long long exponent = 0;
  if (mark < digits.size()) {
    std::string_view written = digits.substr(mark + 1);
    const bool is_negative = written.starts_with('-');
    if (is_negative || written.starts_with('+')) written.remove_prefix(1);
    constexpr long long most = 1'000'000'000'000;
    for (const char c : written) exponent = std::min(most, exponent * 10 + (c - '0'));
    if (is_negative) exponent = -exponent;
  }
  return exponent + static_cast<long long>(point) - static_cast<long long>(first) < 0;
}

/// Without a sign.
number_reading read_digits(std::string_view digits, double& number) noexcept {
  const char* end = digits.data() + digits.size();
  const auto [stop, status] = std::from_chars(digits.data(), end, number);
  if (stop != end || status == std::errc::invalid_argument) return number_reading::no_number;
  if (status == std::errc() && std::isfinite(number)) return number_reading::number;
  number = 0;
  return is_tiny(digits) ? number_reading::number : number_reading::too_large;
}

number_reading read_unsigned(wide_view text, double& number) {
  const OLECHAR first = text.empty() ? OLECHAR{} : text.front();
  if (!(is_digit(first) || code_of(first) == '.') ||
      !std::all_of(text.begin(), text.end(), occurs_in_numbers)) {
    return number_reading::no_number;
  }
  const auto narrow = [](OLECHAR c) { return static_cast<char>(c); };
  if (std::array<char, 64> room; text.size() <= room.size()) {
    std::transform(text.begin(), text.end(), room.begin(), narrow);
    return read_digits({room.data(), text.size()}, number);
  }
  std::string digits(text.size(), ' ');
  std::transform(text.begin(), text.end(), digits.begin(), narrow);
  return read_digits(digits, number);
}

}  // namespace

number_reading read_number(wide_view text, double& number) {
  text = without_blanks(text);
  const unsigned sign = text.empty() ? 0 : code_of(text.front());
  if (sign == '-' || sign == '+') text.remove_prefix(1);
  const number_reading reading = read_unsigned(text, number);
  if (sign == '-') number = -number;
  return reading;
}

number_text write_number(double number) noexcept {
  number_text text;
  std::array<char, 32> room;
  char* end = room.data();
  if (std::isinf(number)) {
    constexpr std::string_view infinity = "-INF";
    end = std::copy(infinity.begin() + (number < 0 ? 0 : 1), infinity.end(), end);
  } else {
    // Adding 0 takes the sign off -0.
    end = std::to_chars(end, end + room.size(), number + 0.0, std::chars_format::general, 15).ptr;
  }
  for (const char* c = room.data(); c != end; ++c) {
    text.units[text.length++] = static_cast<OLECHAR>(*c == 'e' ? 'E' : *c);
  }
  return text;
}

}  // namespace ovf::filter
