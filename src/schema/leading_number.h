// The number that a text begins with, as the C library's wide functions read it in their own locale:
// blanks before it are skipped, whatever follows is of no account, and no number at all is 0.
#pragma once

#include "base/text.h"
#include "ovfile/ovfile.h"

namespace ovf {

/// A decimal number with point and exponent, a hexadecimal one (0x1.8p3), inf, infinity or nan, in either
/// case. Correctly rounded; too large a number is infinite, too small a one 0.
double leading_number(wide_view text);

/// A whole decimal number; one beyond 32 bits is the nearest that fits.
LONG leading_integer(wide_view text);

}  // namespace ovf
