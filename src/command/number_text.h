// Numbers as text: the shortest that reads back to the same value.
#pragma once

#include <string>

namespace command {

/// Appends the number; whole ones below 2^24 (float) or 1e15 (double) without an exponent, `nan`, `inf`
/// and `-inf` by these names.
void append_number(std::string& out, float value);
void append_number(std::string& out, double value);

template <class Float>
std::string number_text(Float value) {
  std::string out;
  append_number(out, value);
  return out;
}

}  // namespace command
