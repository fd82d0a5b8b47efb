// Numbers as text: a fixed count of significant digits, without trailing zeros, in exponent form when
// the exponent is small or large. The digits come from std::to_chars, which is exact; only what an exact
// tie does (away from zero, not to even) is decided here.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

#include "platform/variant_conversions_linux.h"

namespace ovf::conversion {

namespace {

/// A positive number as DIGIT.DIGITS × 10^exponent.
struct decimal {
  char digits[800];
  int count;
  int exponent;
};

/// Takes the text of std::to_chars in scientific form apart.
void take_apart(const char* text, const char* end, decimal& number) {
  const char* mark = std::find(text, end, 'e');
  number.count = 0;
  for (const char* next = text; next != mark; ++next) {
    if (*next != '.') number.digits[number.count++] = *next;
  }
  const char* power = mark + (mark[1] == '+' ? 2 : 1);
  std::from_chars(power, end, number.exponent);
}

void digits_of(double value, int count, decimal& number) {
  char text[820];
  const auto end =
      std::to_chars(text, text + sizeof text, value, std::chars_format::scientific, count - 1).ptr;
  take_apart(text, end, number);
}

void count_up(decimal& number) {
  int i = number.count - 1;
  while (i >= 0 && number.digits[i] == '9') number.digits[i--] = '0';
  if (i >= 0) {
    ++number.digits[i];
    return;
  }
  number.digits[0] = '1';
  ++number.exponent;
}

/// The number rounded to `count` digits, from a rounding to a few more.
void rounded_digits(double value, int count, decimal& number) {
  constexpr int more = 5;
  constexpr char half[] = "50000";
  digits_of(value, count + more, number);
  // At exactly a half the rounding to more digits may have hidden on which side the number lies.
  if (std::memcmp(number.digits + count, half, more) == 0) {
    digits_of(value, static_cast<int>(sizeof number.digits), number);
  }
  const bool up = number.digits[count] >= '5';
  number.count = count;
  if (up) count_up(number);
}

/// The shortest digits that read back: they are the rounded ones when they are no more than every
/// decimal number of that length survives.
bool short_digits(double value, int count, decimal& number) {
  if (std::abs(value) < std::numeric_limits<double>::min()) return false;
  char text[32];
  const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::scientific).ptr;
  take_apart(text, end, number);
  return number.count <= count;
}

void append_exponent(short_text& text, int exponent) {
  text.append('E');
  text.append(exponent < 0 ? '-' : '+');
  char digits[8];
  const char* end = std::to_chars(digits, digits + sizeof digits, std::abs(exponent)).ptr;
  if (end - digits < 2) text.append('0');
  text.append(digits, end);
}

short_text laid_out(const decimal& number, bool negative, int count) {
  int used = number.count;
  while (used > 1 && number.digits[used - 1] == '0') --used;
  short_text text;
  if (negative) text.append('-');
  const char* digits = number.digits;
  if (number.exponent < -4 || number.exponent >= count) {
    text.append(digits[0]);
    if (used > 1) text.append('.');
    text.append(digits + 1, digits + used);
    append_exponent(text, number.exponent);
  } else if (number.exponent < 0) {
    text.append('0');
    text.append('.');
    for (int zeros = -1 - number.exponent; zeros > 0; --zeros) text.append('0');
    text.append(digits, digits + used);
  } else {
    const int whole = number.exponent + 1;
    text.append(digits, digits + std::min(used, whole));
    for (int zeros = whole - used; zeros > 0; --zeros) text.append('0');
    if (used > whole) text.append('.');
    if (used > whole) text.append(digits + whole, digits + used);
  }
  return text;
}

short_text general_text(double value, int count, bool is_double) {
  if (std::isnan(value)) return short_text("NAN");
  if (std::isinf(value)) return short_text(value < 0 ? "-INF" : "INF");
  if (value == 0) return short_text("0");
  decimal number;
  const double size = std::abs(value);
  if (!is_double || !short_digits(size, count, number)) rounded_digits(size, count, number);
  return laid_out(number, value < 0, count);
}

}  // namespace

short_text text_from(double value) noexcept { return general_text(value, 15, true); }

short_text text_from(float value) noexcept { return general_text(static_cast<double>(value), 7, false); }

wide whole_text(bool negative, std::uint64_t size) {
  char digits[24];
  char* const end = std::to_chars(digits, digits + sizeof digits, size).ptr;
  return wide(negative ? u"-" : u"").append(digits, end);
}

wide currency_text(std::int64_t value) {
  const auto bits = static_cast<std::uint64_t>(value);
  const std::uint64_t size = value < 0 ? 0 - bits : bits;
  wide text = whole_text(value < 0, size / 10000);
  char16_t part[5] = {u'.'};
  std::uint64_t rest = size % 10000;
  for (int i = 4; i > 0; --i, rest /= 10) part[i] = static_cast<char16_t>(u'0' + rest % 10);
  const wide_view tail(part, 5);
  const std::size_t last = tail.find_last_not_of(u'0');
  return last == 0 ? text : text.append(tail.substr(0, last + 1));
}

}  // namespace ovf::conversion
