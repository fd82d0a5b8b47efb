// A float as people read it: the number that its text of seven digits stands for.
#pragma once

namespace ovf {

/// The double nearest to what the ordinary change of the float to text says. Infinities and NaN as they
/// are.
double printed_value(float value);

}  // namespace ovf
