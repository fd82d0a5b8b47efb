// Numbers as signatures write them: in decimals, with a number of digits behind the point, the same on
// every system.
#pragma once

#include <string>

#include "base/text.h"

namespace ovf {

/// Appends the value to `to`. Six digits behind the point, of which −1 takes the trailing zeros away (and
/// the point with the last of them), 0 and more makes it exactly so many, and less than −1 keeps all.
/// Digits are correctly rounded, ties to even; infinities and NaN read "inf", "-inf", "nan". Throws
/// std::out_of_range "ov_size_t_2_short" for a text of more than 32,767 characters.
void append_decimal(std::u16string& to, double value, long digits);

}  // namespace ovf
