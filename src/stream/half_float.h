// Numbers of 2 bytes: 1 bit for the sign, 5 for the exponent, 10 for the fraction.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

namespace ovf {

/// Every one of them is a float.
inline float float_from_half(std::uint16_t bits) noexcept {
  constexpr std::uint32_t no_exponent = 0;
  constexpr std::uint32_t all_ones = 31;
  const std::uint32_t exponent = bits >> 10 & 0x1FU;
  const std::uint32_t fraction = bits & 0x3FFU;
  const float sign = (bits & 0x8000U) != 0 ? -1.0F : 1.0F;
  if (exponent == no_exponent) return sign * std::ldexp(static_cast<float>(fraction), -24);
  if (exponent == all_ones) {
    return sign *
           (fraction == 0 ? std::numeric_limits<float>::infinity() : std::numeric_limits<float>::quiet_NaN());
  }
  return sign * std::ldexp(static_cast<float>(fraction | 0x400U), static_cast<int>(exponent) - 25);
}

}  // namespace ovf
