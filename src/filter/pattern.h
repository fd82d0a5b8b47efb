// The patterns of LIKE: `%` stands for any characters or none, `_` for one, and behind an escape character
// both stand for themselves.
#pragma once

#include <optional>
#include <vector>

#include "filter/characters.h"

namespace ovf::filter {

/// Matching may look at each character of the text once for each of the pattern.
constexpr std::size_t longest_pattern = 1000;

struct pattern_part {
  enum class kind { character, one_character, any_characters };

  kind asked = kind::character;
  OLECHAR character = 0;
};
using pattern = std::vector<pattern_part>;

/// Nothing when an escape character stands before something else than `%`, `_` or itself.
std::optional<pattern> read_pattern(wide_view written, std::optional<OLECHAR> escape);

bool matches(wide_view text, const pattern& asked) noexcept;

}  // namespace ovf::filter
