#include "number_text.h"

#include <fmt/compile.h>

#include <cmath>
#include <cstdint>

namespace command {
namespace {

template <class Float>
void append_shortest(std::string& out, Float value) {
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
  out.append(text, fmt::format_to(text, FMT_COMPILE("{}"), value));
}

}  // namespace

void append_number(std::string& out, float value) { append_shortest(out, value); }

void append_number(std::string& out, double value) { append_shortest(out, value); }

}  // namespace command
