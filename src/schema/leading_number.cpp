#include "schema/leading_number.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <limits>
#include <optional>
#include <string>

namespace ovf {

namespace {

constexpr std::string_view hexadecimal_digits = "0123456789abcdefABCDEF";

/// The front of a text in ASCII, behind its blanks, up to what no number holds.
std::string ascii_front(wide_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(OLESTR(" \t\n\v\f\r")), text.size()));
  const auto outside = [](OLECHAR unit) { return unit <= OLESTR(' ') || unit > OLESTR('~'); };
  std::string front;
  std::transform(text.begin(), std::ranges::find_if(text, outside), std::back_inserter(front),
                 [](OLECHAR unit) { return static_cast<char>(unit); });
  return front;
}

/// Takes a sign off the front; true for a minus.
bool take_sign(std::string_view& text) {
  if (text.empty() || (text.front() != '-' && text.front() != '+')) return false;
  const bool negative = text.front() == '-';
  text.remove_prefix(1);
  return negative;
}

/// Takes "0x" off the front when a hexadecimal number follows; alone it is a 0 and a letter.
bool take_hexadecimal_mark(std::string_view& text) {
  if (!text.starts_with("0x") && !text.starts_with("0X")) return false;
  const std::size_t digit = text.substr(2).starts_with('.') ? 3 : 2;
  if (digit >= text.size() || hexadecimal_digits.find(text[digit]) == std::string_view::npos) return false;
  text.remove_prefix(2);
  return true;
}

/// An exponent, cut to what no other part of a number can outweigh.
long long exponent_of(std::string_view text) {
  constexpr long long most = std::numeric_limits<long long>::max() / 4;
  const bool negative = take_sign(text);
  long long value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::result_out_of_range || value > most) value = most;
  return negative ? -value : value;
}

/// What to make of a number that no double can hold: too large, or too small?
double beyond_range(std::string_view number, bool hexadecimal) {
  const std::size_t mark = std::min(number.find_first_of(hexadecimal ? "pP" : "eE"), number.size());
  const std::string_view digits = number.substr(0, mark);
  const auto point = static_cast<long long>(std::min(digits.find('.'), digits.size()));
  const auto first = static_cast<long long>(digits.find_first_not_of("0."));
  const long long exponent = mark < number.size() ? exponent_of(number.substr(mark + 1)) : 0;
  const long long places = (point - first) * (hexadecimal ? 4 : 1);
  return places + exponent > 0 ? std::numeric_limits<double>::infinity() : 0.0;
}

/// Nothing where there is no digit.
std::optional<double> magnitude_of(std::string_view text) {
  // from_chars would take a second sign.
  if (text.starts_with('-')) return std::nullopt;
  const bool hexadecimal = take_hexadecimal_mark(text);
  const auto format = hexadecimal ? std::chars_format::hex : std::chars_format::general;
  double value = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, format);
  if (error == std::errc::result_out_of_range) {
    return beyond_range(text.substr(0, static_cast<std::size_t>(end - text.data())), hexadecimal);
  }
  return error == std::errc() ? std::optional(value) : std::nullopt;
}

}  // namespace

double leading_number(wide_view text) {
  const std::string front = ascii_front(text);
  std::string_view rest = front;
  const bool negative = take_sign(rest);
  const std::optional<double> magnitude = magnitude_of(rest);
  if (!magnitude) return 0.0;
  return negative ? -*magnitude : *magnitude;
}

LONG leading_integer(wide_view text) {
  const std::string front = ascii_front(text);
  std::string_view rest = front;
  const bool negative = take_sign(rest);
  long long value = 0;
  // A second sign, which from_chars would take, is no digit.
  if (rest.starts_with('-')) return 0;
  const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), value);
  constexpr long long most = std::numeric_limits<LONG>::max();
  if (error == std::errc::result_out_of_range || value > most) return negative ? -most - 1 : most;
  return static_cast<LONG>(negative ? -value : value);
}

}  // namespace ovf
