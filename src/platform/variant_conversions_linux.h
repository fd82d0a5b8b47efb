// The parts of the change of type: what a text says as a number or a date, and how numbers and dates
// read as text. No part knows variants, asks the process's locale or its rounding mode.
#pragma once

#include <cstdint>
#include <optional>

#include "base/text.h"

namespace ovf::conversion {

/// A number as a text gives it, exactly: decimal digits with the place of the point, or the bits of a
/// hexadecimal or octal one.
struct number_text {
  /// More digits than decide the rounding of any double (767); a 1 in the last one's place stands for
  /// whatever follows.
  static constexpr int capacity = 800;

  bool negative;
  bool is_bits;
  bool too_many_bits;  ///< more than the 64 that `bits` holds
  std::uint64_t bits;
  int count;           ///< digits without leading zeros; 0 for the number 0
  std::int64_t point;  ///< the value is 0.DIGITS × 10^point
  char digits[capacity];
};

/// False when the text is no number. Reads up to the first NUL.
bool read_number(wide_view text, number_text& number) noexcept;

/// The nearest value; DISP_E_OVERFLOW beyond the type, 0 below it.
HRESULT real_from(const number_text& number, double& value) noexcept;
HRESULT real_from(const number_text& number, float& value) noexcept;
/// Whether the number counts as true: not 0 and not below the smallest double. What rounds to the largest
/// double is DISP_E_OVERFLOW.
HRESULT truth_from(const number_text& number, bool& value) noexcept;
/// The number's size rounded to a whole, halves to even; false when it takes more than 64 bits.
bool whole_from(const number_text& number, std::uint64_t& size) noexcept;

/// A text of a number, which never needs memory of its own.
class short_text {
 public:
  short_text() = default;
  explicit short_text(std::string_view text) { append(text.data(), text.data() + text.size()); }
  void append(char letter) { units_[size_++] = static_cast<char16_t>(letter); }
  void append(const char* first, const char* last) {
    for (; first < last; ++first) append(*first);
  }
  operator wide_view() const { return {units_, size_}; }

 private:
  char16_t units_[32];  ///< a sign, 15 digits, a point, an exponent of 5; or 0.000 before the digits
  std::size_t size_ = 0;
};

/// What a text says that is one of the two truth values by name.
std::optional<bool> read_boolean(wide_view text) noexcept;

/// `%.15G` and `%.7G` of the exact value, exact ties away from zero.
short_text text_from(double value) noexcept;
short_text text_from(float value) noexcept;
wide whole_text(bool negative, std::uint64_t size);
/// Ten-thousandths, as many digits after the point as say something.
wide currency_text(std::int64_t value);

/// Days since 1899-12-30 with the time of day as a fraction (of the size of the number).
/// A day, a time, or both; nothing for a text that is none of them.
std::optional<double> read_date(wide_view text) noexcept;
/// Nothing when the day is not within the years 100 to 9999.
std::optional<wide> date_text(double date);
/// Whether a number can be a date.
inline bool is_date(double value) noexcept { return value > -657435.0 && value < 2958466.0; }

/// Halves to even, in any rounding mode.
double rounded(double value) noexcept;
/// The number in ten-thousandths, halves to even; DISP_E_OVERFLOW.
HRESULT currency_from(double value, std::int64_t& currency) noexcept;

}  // namespace ovf::conversion
