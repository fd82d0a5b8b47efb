#include "table/decimal_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <stdexcept>
#include <string_view>

namespace ovf {
namespace {

constexpr int usual_digits = 6;
constexpr std::size_t longest = 32'767;

/// Room for the longest double with six digits.
using buffer = std::array<char, 400>;

/// Writes millionths, which end where the buffer ends; returns where they begin.
char* write_millionths(buffer& room, std::uint64_t millionths, bool negative) noexcept {
  char* at = room.data() + room.size();
  for (int i = 0; i < usual_digits; ++i) {
    *--at = static_cast<char>('0' + millionths % 10);
    millionths /= 10;
  }
  *--at = '.';
  do {
    *--at = static_cast<char>('0' + millionths % 10);
    millionths /= 10;
  } while (millionths != 0);
  if (negative) *--at = '-';
  return at;
}

/// The short road: a product that lies clearly on one side of a half rounds to the right millionth,
/// although it is itself rounded. False where that cannot be said.
bool to_millionths(double magnitude, std::uint64_t& millionths) noexcept {
  // Up to here a product is exact to 1/1024.
  constexpr double limit = 4e12;
  constexpr double margin = 1.0 / 256;
  const double product = magnitude * 1e6;
  if (!(product < limit)) return false;
  const double below = std::floor(product);
  const double rest = product - below;
  if (std::abs(rest - 0.5) < margin) return false;
  millionths = static_cast<std::uint64_t>(below) + (rest > 0.5 ? 1 : 0);
  return true;
}

std::string_view six_digits(buffer& room, double value) noexcept {
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value > 0 ? "inf" : "-inf";
  std::uint64_t millionths = 0;
  if (to_millionths(std::abs(value), millionths)) {
    const char* begin = write_millionths(room, millionths, std::signbit(value));
    return {begin, static_cast<std::size_t>(room.data() + room.size() - begin)};
  }
  const auto end =
      std::to_chars(room.data(), room.data() + room.size(), value, std::chars_format::fixed, usual_digits);
  return {room.data(), static_cast<std::size_t>(end.ptr - room.data())};
}

std::string_view without_trailing_zeros(std::string_view text) noexcept {
  if (text.find('.') == std::string_view::npos) return text;
  text = text.substr(0, text.find_last_not_of('0') + 1);
  return text.substr(0, text.find_last_not_of('.') + 1);
}

std::string_view fewer_digits(buffer& room, double value, int digits) noexcept {
  const auto end =
      std::to_chars(room.data(), room.data() + room.size(), value, std::chars_format::fixed, digits);
  return {room.data(), static_cast<std::size_t>(end.ptr - room.data())};
}

void append_with_zeros(std::u16string& to, std::string_view text, std::size_t zeros, bool point) {
  if (text.size() + zeros + (point ? 1 : 0) > longest) throw std::out_of_range("ov_size_t_2_short");
  to.append(text.begin(), text.end());
  if (point) to.push_back(u'.');
  to.append(zeros, u'0');
}

}  // namespace

void append_decimal(std::u16string& to, double value, long digits) {
  buffer room;
  std::string_view text = six_digits(room, value);
  if (digits < 0) {
    if (digits == -1) text = without_trailing_zeros(text);
    to.append(text.begin(), text.end());
    return;
  }
  const auto wanted = static_cast<std::size_t>(digits);
  if (text.find('.') == std::string_view::npos) return append_with_zeros(to, text, wanted, wanted > 0);
  if (wanted < usual_digits)
    return append_with_zeros(to, fewer_digits(room, value, static_cast<int>(digits)), 0, false);
  append_with_zeros(to, text, wanted - usual_digits, false);
}

}  // namespace ovf
