// Texts: UTF-16 towards hosts, the ANSI code page (Windows-1252 on Linux) in files, UTF-8 for the
// system's own names and messages on Linux. No conversion asks the process's locale, none throws for
// what a text holds: characters without a place become '?' (ANSI) or U+FFFD (Unicode).
#pragma once

#include <string>
#include <string_view>

#include "ovfile/component.h"

namespace ovf {

using wide = std::basic_string<OLECHAR>;
using wide_view = std::basic_string_view<OLECHAR>;

/// ANSI code page to UTF-16; on Linux every byte is one unit.
wide wide_from_ansi(std::string_view text);
/// UTF-16 to the ANSI code page, without best fits.
std::string ansi_from_wide(wide_view text);

wide wide_from_utf8(std::string_view text);
std::string utf8_from_wide(wide_view text);

/// A BSTR as a view; null is empty. The view lives as long as the BSTR.
wide_view view_of(BSTR text) noexcept;
/// A new BSTR, or null for an empty text. Throws std::bad_alloc.
BSTR bstr_or_null(wide_view text);
/// A new BSTR, never null. Throws std::bad_alloc.
BSTR new_bstr(wide_view text);

/// Puts `values` into the places of a wide format text that knows %s (text), %d and %i (decimal) and %x
/// (hexadecimal, lower case).
class wide_format {
 public:
  explicit wide_format(wide_view pattern) : rest_(pattern) {}
  wide_format& arg(wide_view text);
  wide_format& arg(long long number);
  /// What the text reads with all values in place.
  wide text() const;

 private:
  /// Moves the literal text before the next place over and returns the place's letter, 0 at the end.
  OLECHAR next_place();

  wide done_;
  wide_view rest_;
};

}  // namespace ovf
