// The number that means "no value".
#pragma once

namespace command {

inline constexpr double absent_number = -1.0e30;

inline bool is_absent(double value) noexcept { return value == absent_number; }
inline bool is_absent(float value) noexcept { return value == static_cast<float>(absent_number); }

}  // namespace command
