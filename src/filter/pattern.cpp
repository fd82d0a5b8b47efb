#include "filter/pattern.h"

namespace ovf::filter {

namespace {

using kind = pattern_part::kind;

pattern_part part_of(OLECHAR c) noexcept {
  if (code_of(c) == '%') return {kind::any_characters, c};
  if (code_of(c) == '_') return {kind::one_character, c};
  return {kind::character, c};
}

}  // namespace

std::optional<pattern> read_pattern(wide_view written, std::optional<OLECHAR> escape) {
  pattern read;
  for (std::size_t i = 0; i < written.size(); ++i) {
    if (!escape || written[i] != *escape) {
      read.push_back(part_of(written[i]));
      continue;
    }
    if (++i == written.size()) return {};
    if (part_of(written[i]).asked == kind::character && written[i] != *escape) return {};
    read.push_back({kind::character, written[i]});
  }
  return read;
}

bool matches(wide_view text, const pattern& asked) noexcept {
  std::size_t t = 0;
  std::size_t p = 0;
  // Where to go on when the characters after the last % do not fit: one character of the text further.
  std::size_t again_text = 0;
  std::size_t again_part = asked.size() + 1;  // there was none
  while (t < text.size()) {
    const bool at_part = p < asked.size();
    if (at_part && asked[p].asked == kind::any_characters) {
      again_part = ++p;
      again_text = t;
    } else if (at_part && (asked[p].asked == kind::one_character || asked[p].character == text[t])) {
      ++p;
      ++t;
    } else if (again_part <= asked.size()) {
      p = again_part;
      t = ++again_text;
    } else {
      return false;
    }
  }
  while (p < asked.size() && asked[p].asked == kind::any_characters) ++p;
  return p == asked.size();
}

}  // namespace ovf::filter
