// The numbers that the table format gives a meaning of their own. Absent and bottom are one.
#pragma once

namespace ovf {

inline constexpr double absent_value = -1.0e30;
inline constexpr double top_value = 1.0e30;
inline constexpr double trace_value = 1.0e-30;

/// What a file of 4-byte words makes of it.
constexpr double in_single(double value) noexcept { return static_cast<double>(static_cast<float>(value)); }

}  // namespace ovf
