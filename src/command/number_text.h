// Numbers as text: the shortest that reads back to the same value.
#pragma once

#include <cmath>
#include <cstdint>
#include <string>

#include "words.h"

namespace command {

/// Appends the number; whole ones below 2^24 (float) or 1e15 (double) without an exponent, `nan`, `inf`
/// and `-inf` by these names.
template <class Float>
void append_number(std::string& out, Float value) {
  constexpr Float largest_whole = sizeof(Float) == sizeof(float) ? Float(16777216) : Float(1e15);
  if (std::fabs(value) < largest_whole) {
    const auto whole = static_cast<std::int64_t>(value);
    if (static_cast<Float>(whole) == value && (whole != 0 || !std::signbit(value))) {
      const fmt::format_int digits(whole);
      out.append(digits.data(), digits.size());
      return;
    }
  }
  if (std::isnan(value)) {
    out += "nan";
    return;
  }
  char text[48];
  const char* const end = fmt::format_to(text, FMT_COMPILE("{}"), value);
  out.append(text, static_cast<std::size_t>(end - text));
}

template <class Float>
std::string number_text(Float value) {
  std::string out;
  append_number(out, value);
  return out;
}

}  // namespace command
