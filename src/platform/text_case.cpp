#include "platform/text_case.h"

#include <algorithm>

namespace ovf {

namespace {

/// Blocks where upper and lower case alternate; in the odd ones the upper case has the odd number.
bool alternates_from_even(unsigned unit) {
  return (unit >= 0x100 && unit < 0x138) || (unit >= 0x14A && unit < 0x178) ||
         (unit >= 0x460 && unit < 0x482);
}
bool alternates_from_odd(unsigned unit) {
  return (unit >= 0x139 && unit < 0x149) || (unit >= 0x179 && unit < 0x17F);
}

unsigned folded_code(unsigned unit) {
  if (unit < 0x80) return unit >= 'A' && unit <= 'Z' ? unit + 32 : unit;
  if (unit >= 0xC0 && unit <= 0xDE && unit != 0xD7) return unit + 32;
  if (unit == 0x130 || unit == 0x131) return unit;  // the Turkish i has no pair without a locale
  if (alternates_from_even(unit)) return unit | 1u;
  if (alternates_from_odd(unit)) return unit + (unit & 1u);
  if (unit == 0x178) return 0xFF;
  if (unit >= 0x391 && unit <= 0x3A9 && unit != 0x3A2) return unit + 32;
  if (unit >= 0x410 && unit <= 0x42F) return unit + 32;
  if (unit >= 0x400 && unit <= 0x40F) return unit + 80;
  return unit;
}

}  // namespace

OLECHAR folded(OLECHAR unit) noexcept { return static_cast<OLECHAR>(folded_code(unit)); }

wide folded(wide_view text) {
  wide result(text);
  for (OLECHAR& unit : result) unit = folded(unit);
  return result;
}

bool equal_without_case(wide_view left, wide_view right) noexcept {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](OLECHAR a, OLECHAR b) { return a == b || folded(a) == folded(b); });
}

}  // namespace ovf
