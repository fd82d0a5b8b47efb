// The numbers that have a meaning of their own in tables, which have no other way to say "no value".
#pragma once

namespace ovf {

inline constexpr double absent_number = -1.0e30;
/// Numbers above all values, and a value too small to measure.
inline constexpr double top_number = 1.0e30;
inline constexpr double trace_number = 1.0e-30;

}  // namespace ovf
