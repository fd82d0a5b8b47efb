// Comparison without regard to case, the same on every system and in every locale. Pairs of the Latin,
// Greek and Cyrillic blocks are known, which is what names are made of.
#pragma once

#include "base/text.h"

namespace ovf {

/// The lower case of a character that has one.
OLECHAR folded(OLECHAR unit) noexcept;
wide folded(wide_view text);
bool equal_without_case(wide_view left, wide_view right) noexcept;

}  // namespace ovf
