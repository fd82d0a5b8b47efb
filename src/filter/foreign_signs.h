// Characters beyond ASCII that stand for an operation, a quote or a space, and so for no letter of a name:
// editors and other programs put them where a plain sign was meant. As parts of names they would make a
// field that no table has.
#pragma once

#include <string_view>

namespace ovf::filter {

constexpr unsigned byte_order_mark = 0xFEFF;

constexpr bool is_foreign_sign(unsigned code) noexcept {
  struct range {
    unsigned first;
    unsigned last;
  };
  constexpr range signs[] = {
      {0x0080, 0x00A0},  // controls, the blank that does not break
      {0x00AB, 0x00AD},  // opening quote, not, invisible hyphen
      {0x00B1, 0x00B3},  // plus or minus, powers
      {0x00B9, 0x00B9},  // power
      {0x00BB, 0x00BB},  // closing quote
      {0x00D7, 0x00D7},  // times
      {0x00F7, 0x00F7},  // divided
      {0x2000, 0x209F},  // blanks, dashes, quotes, powers
      {0x2190, 0x2BFF},  // arrows, mathematics, frames, shapes
      {0x2E00, 0x2E7F},  // punctuation
      {0x3000, 0x3004},  // wide blank and punctuation
      {0x3008, 0x3020},  // wide brackets
      {0xFE10, 0xFE1F},  // upright punctuation
      {0xFE30, 0xFE6F},  // small punctuation
      {0xFEFF, 0xFEFF},  // byte order mark
      {0xFF01, 0xFF0F},  // wide punctuation
      {0xFF1A, 0xFF20},  //
      {0xFF3B, 0xFF40},  //
      {0xFF5B, 0xFF65},  //
      {0xFFE0, 0xFFFF},  // wide signs, no characters
  };
  for (const range& one : signs) {
    if (code >= one.first && code <= one.last) return true;
  }
  return false;
}

/// What to write instead of the sign; empty where nobody can tell.
std::string_view hint_for(unsigned sign) noexcept;

}  // namespace ovf::filter
