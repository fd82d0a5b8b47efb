// Floats on their way to where numbers have 8 bytes.
#pragma once

namespace command {

/// The number that the float's shortest digits say: 0.1 is 0.1, not 0.10000000149. What is no finite number
/// stays what it is, and so does a zero's sign.
double widened(float value) noexcept;

/// Whether the number says the same again after it was a float.
bool fits_float(double value) noexcept;

}  // namespace command
