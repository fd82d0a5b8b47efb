// Widening a float so that its decimal digits stay tidy: 0.1f becomes 0.1 and not 0.10000000149…
#pragma once

#include <cfloat>

namespace ovf {

/// A product that is rounded to a float, as the digits are counted from it. Where registers carry more
/// digits than the type, memory rounds it.
inline float rounded_product(float scale, float value) noexcept {
  if constexpr (FLT_EVAL_METHOD == 0) {
    return scale * value;
  } else {
    const volatile float product = scale * value;
    return product;
  }
}

/// The float as a double rounded to seven significant decimal digits; below 1, where the zeros behind the
/// point count, to seven decimals. Magnitudes of 100,000 and more, infinities and NaN are widened unchanged.
inline double tidied(float value) noexcept {
  const float magnitude = value < 0.0F ? -value : value;
  if (magnitude == 0.0F) return 0.0;
  float scale = 0.0F;
  if (magnitude < 1.0F) {
    scale = 10'000'000.0F;
  } else if (magnitude < 10.0F) {
    scale = 1'000'000.0F;
  } else if (magnitude < 100.0F) {
    scale = 100'000.0F;
  } else if (magnitude < 1'000.0F) {
    scale = 10'000.0F;
  } else if (magnitude < 10'000.0F) {
    scale = 1'000.0F;
  } else if (magnitude < 100'000.0F) {
    scale = 100.0F;
  } else {
    return static_cast<double>(value);
  }
  const double rounded = static_cast<double>(rounded_product(scale, value)) + (value >= 0.0F ? 0.5 : -0.5);
  return static_cast<double>(static_cast<int>(rounded)) / static_cast<double>(scale);
}

}  // namespace ovf
