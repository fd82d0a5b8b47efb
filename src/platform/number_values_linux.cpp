// From the digits of a text to a value of a type.
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

#include "platform/variant_conversions_linux.h"

namespace ovf::conversion {

namespace {

constexpr std::int64_t beyond_every_real = 400;  ///< as a power of ten, either way

/// The bits of a hexadecimal number as a signed one of 32 bits, which is all that reals take.
HRESULT real_from_bits(const number_text& number, double& value) {
  if (number.too_many_bits || number.bits > 0x80000000u) return DISP_E_OVERFLOW;
  value = static_cast<double>(static_cast<std::int32_t>(static_cast<std::uint32_t>(number.bits)));
  return S_OK;
}

template <class Real>
HRESULT nearest(const number_text& number, Real& value) {
  if (number.is_bits) {
    double exact = 0;
    const HRESULT status = real_from_bits(number, exact);
    value = static_cast<Real>(exact);
    return status;
  }
  Real size = 0;
  if (number.count != 0 && number.point >= -beyond_every_real) {
    if (number.point > beyond_every_real) return DISP_E_OVERFLOW;
    char text[number_text::capacity + 24];
    std::memcpy(text, number.digits, static_cast<std::size_t>(number.count));
    char* end = text + number.count;
    *end++ = 'e';
    end = std::to_chars(end, text + sizeof text, number.point - number.count).ptr;
    if (std::from_chars(text, end, size).ec == std::errc::result_out_of_range) {
      if (number.point > 0) return DISP_E_OVERFLOW;
      size = 0;
    }
    if (size > std::numeric_limits<Real>::max()) return DISP_E_OVERFLOW;
  }
  value = number.negative ? -size : size;
  return S_OK;
}

/// Whether the digits, which round to the smallest double, stand for less than it.
bool is_below_smallest(const number_text& number) {
  char exact[1100];
  const auto result = std::to_chars(exact, exact + sizeof exact, std::numeric_limits<double>::denorm_min(),
                                    std::chars_format::scientific, number_text::capacity);
  // Both begin at 10^-324, or the text at a later digit.
  if (number.point != -323) return number.point < -323;
  for (int i = 0; i < number.count; ++i) {
    const char* digit = i == 0 ? exact : exact + i + 1;
    if (digit >= result.ptr || number.digits[i] != *digit) {
      return digit < result.ptr && number.digits[i] < *digit;
    }
  }
  return true;
}

}  // namespace

HRESULT real_from(const number_text& number, double& value) noexcept { return nearest(number, value); }

HRESULT real_from(const number_text& number, float& value) noexcept { return nearest(number, value); }

HRESULT truth_from(const number_text& number, bool& value) noexcept {
  double real = 0;
  const HRESULT status = real_from(number, real);
  value = real != 0;
  // At both ends of the range the automation library does not round into it.
  if (std::abs(real) == std::numeric_limits<double>::max()) return DISP_E_OVERFLOW;
  if (std::abs(real) == std::numeric_limits<double>::denorm_min()) value = !is_below_smallest(number);
  return status;
}

bool whole_from(const number_text& number, std::uint64_t& size) noexcept {
  size = number.bits;
  if (number.is_bits || number.count == 0 || number.point < 0) return !number.too_many_bits;
  if (number.point > 20) return false;
  const auto digit = [&](std::int64_t i) {
    return i < number.count ? static_cast<unsigned>(number.digits[i] - '0') : 0u;
  };
  for (std::int64_t i = 0; i < number.point; ++i) {
    if (size > (std::numeric_limits<std::uint64_t>::max() - digit(i)) / 10) return false;
    size = size * 10 + digit(i);
  }
  // Trailing zeros have been dropped: a 5 as the last digit is an exact half.
  const bool half = number.point + 1 == number.count && digit(number.point) == 5;
  const bool up = half ? (size & 1) != 0 : digit(number.point) >= 5;
  if (up && size == std::numeric_limits<std::uint64_t>::max()) return false;
  size += up ? 1 : 0;
  return true;
}

double rounded(double value) noexcept {
  const double down = std::floor(value);
  const double part = value - down;
  if (part != 0.5) return part > 0.5 ? down + 1 : down;
  return std::fmod(down, 2) == 0 ? down : down + 1;
}

HRESULT currency_from(double value, std::int64_t& currency) noexcept {
  if (!(std::abs(value) < 922337203685478.0)) return DISP_E_OVERFLOW;
  const double whole = std::trunc(value);
  const double product = (value - whole) * 10000;
  const double error = std::fma(value - whole, 10000, -product);  // what the product lost, exactly
  const double down = std::floor(product);
  const double part = product - down;
  const bool odd = std::fmod(down, 2) != 0;
  const bool up = part > 0.5 || (part == 0.5 && (error > 0 || (error == 0 && odd)));
  const auto fraction = static_cast<std::int64_t>(down) + (up ? 1 : 0);
  const bool overflow = __builtin_add_overflow(static_cast<std::int64_t>(whole) * 10000, fraction, &currency);
  return overflow ? DISP_E_OVERFLOW : S_OK;
}

}  // namespace ovf::conversion
