#include "filter/pattern.h"

namespace ovf::filter {

bool matches(wide_view text, wide_view pattern) noexcept {
  std::size_t t = 0;
  std::size_t p = 0;
  // Where to go on when the characters after the last % do not fit: one character of the text further.
  std::size_t again_text = 0;
  std::size_t again_pattern = wide_view::npos;
  while (t < text.size()) {
    const unsigned asked = p < pattern.size() ? code_of(pattern[p]) : 0;
    if (p < pattern.size() && asked == '%') {
      again_pattern = ++p;
      again_text = t;
    } else if (p < pattern.size() && (asked == '_' || asked == code_of(text[t]))) {
      ++p;
      ++t;
    } else if (again_pattern != wide_view::npos) {
      p = again_pattern;
      t = ++again_text;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && code_of(pattern[p]) == '%') ++p;
  return p == pattern.size();
}

}  // namespace ovf::filter
