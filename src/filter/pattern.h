// The patterns of LIKE: `%` stands for any characters or none, `_` for one.
#pragma once

#include "filter/characters.h"

namespace ovf::filter {

/// Matching may look at each character of the text once for each of the pattern.
constexpr std::size_t longest_pattern = 1000;

bool matches(wide_view text, wide_view pattern) noexcept;

}  // namespace ovf::filter
