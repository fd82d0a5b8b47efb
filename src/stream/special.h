// The number that means "no value" in tables, which have no other way to say it.
#pragma once

namespace ovf {

inline constexpr double absent_number = -1.0e30;

}  // namespace ovf
