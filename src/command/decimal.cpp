#include "decimal.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <system_error>

namespace command {
namespace {

/// A double has no more decimal digits than this.
constexpr std::size_t most_digits = 767;

/// A number's text taken apart.
struct decimal {
  bool valid = false;
  std::string_view whole;     ///< digits before the full stop
  std::string_view fraction;  ///< digits after it
  std::size_t digits() const noexcept { return whole.size() + fraction.size(); }
};

std::string_view take_digits(std::string_view& text) noexcept {
  std::size_t count = 0;
  while (count < text.size() && is_digit(text[count])) ++count;
  const std::string_view digits = text.substr(0, count);
  text.remove_prefix(count);
  return digits;
}

bool take_exponent(std::string_view& text) noexcept {
  if (text.empty() || (text[0] != 'e' && text[0] != 'E')) return true;
  text.remove_prefix(1);
  if (!text.empty() && (text[0] == '+' || text[0] == '-')) text.remove_prefix(1);
  return !take_digits(text).empty();
}

/// The digit at `index` of whole and fraction together.
char digit_at(const decimal& number, std::size_t index) noexcept {
  return index < number.whole.size() ? number.whole[index] : number.fraction[index - number.whole.size()];
}

std::size_t first_significant(const decimal& number) noexcept {
  std::size_t first = 0;
  while (first < number.digits() && digit_at(number, first) == '0') ++first;
  return first;
}

/// Digits from the first to the last that is not 0.
std::size_t count_significant(const decimal& number) noexcept {
  const std::size_t first = first_significant(number);
  std::size_t last = number.digits();
  while (last > first && digit_at(number, last - 1) == '0') --last;
  return last - first;
}

decimal take_apart(std::string_view text) noexcept {
  decimal number;
  if (!text.empty() && text[0] == '-') text.remove_prefix(1);
  number.whole = take_digits(text);
  if (number.whole.size() > 1 && number.whole[0] == '0') return number;
  if (!text.empty() && text[0] == '.') {
    text.remove_prefix(1);
    number.fraction = take_digits(text);
  }
  if (number.whole.empty() && number.fraction.empty()) return number;
  number.valid = take_exponent(text) && text.empty();
  return number;
}

/// Whether `value`, written with the text's number of significant digits, has the text's digits. Their
/// exponents then agree too, since the value is the nearest one to the text, but for a carry, which
/// changes the digits.
bool digits_agree(const decimal& number, double value) noexcept {
  const std::size_t count = count_significant(number);
  if (count == 0 || value == 0) return count == 0 && value == 0;
  if (count > most_digits) return false;
  char written[most_digits + 16];
  const auto result = std::to_chars(written, written + sizeof written, std::fabs(value),
                                    std::chars_format::scientific, static_cast<int>(count) - 1);
  if (result.ec != std::errc()) return false;
  std::size_t index = first_significant(number);
  std::size_t compared = 0;
  for (const char* at = written; compared < count; ++at) {
    if (*at == '.') continue;
    if (*at != digit_at(number, index++)) return false;
    ++compared;
  }
  return true;
}

/// Whether every text of so many digits survives in the type at this magnitude, without a closer look.
template <class Float>
bool surely_kept(const decimal& number, Float value) noexcept {
  using limits = std::numeric_limits<Float>;
  return number.digits() <= static_cast<std::size_t>(limits::digits10) &&
         std::fabs(value) > limits::min() / limits::epsilon();
}

template <class Float>
std::errc parse(std::string_view text, Float& value) noexcept {
  return std::from_chars(text.data(), text.data() + text.size(), value).ec;
}

}  // namespace

std::string_view without_blanks(std::string_view text) noexcept {
  const auto is_blank = [](char c) { return c == ' ' || c == '\t'; };
  while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
  return text;
}

number_cell read_number(std::string_view text) noexcept {
  text = without_blanks(text);
  const decimal number = take_apart(text);
  number_cell cell;
  if (!number.valid || parse(text, cell.value) != std::errc()) return cell;
  cell.is_number = surely_kept(number, cell.value) || digits_agree(number, cell.value);
  return cell;
}

const char* number_problem(std::string_view text) noexcept {
  text = without_blanks(text);
  double value = 0;
  if (!take_apart(text).valid) return "is not a number";
  return parse(text, value) == std::errc() ? "has more digits than a number can hold"
                                           : "is beyond what a number can hold";
}

float read_float(std::string_view text, bool& kept) noexcept {
  text = without_blanks(text);
  const decimal number = take_apart(text);
  float value = 0;
  kept = true;
  if (parse(text, value) != std::errc()) {
    // Out of range: too large, or so small that nothing is left.
    double wide = 0;
    (void)parse(text, wide);
    value = static_cast<float>(wide);
    if (std::fabs(wide) > 1) value = std::copysign(std::numeric_limits<float>::infinity(), value);
  }
  kept = std::isfinite(value) &&
         (surely_kept(number, value) || digits_agree(number, static_cast<double>(value)));
  return value;
}

}  // namespace command
