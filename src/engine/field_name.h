// What a field may be called.
#pragma once

#include "base/text.h"

namespace ovf {

/// What a name is checked for; the words for one that is too long differ.
enum class name_use { adding, renaming };

/// Checks length and characters of a field's name; throws MyExceptionClass with the rule's message.
/// Whether the name is taken is the caller's to ask.
void check_field_name(wide_view name, bool is_double, name_use use);

/// The same for a name as the file will hold it, in the ANSI code page. What counts is the bytes, for which
/// the file has places: in some code pages a character takes several.
void check_ansi_field_name(std::string_view name, bool is_double, name_use use);

/// The same for a new field.
inline void check_new_field_name(wide_view name, bool is_double) {
  check_field_name(name, is_double, name_use::adding);
}

/// Throws MyExceptionClass "field name already exists".
[[noreturn]] void fail_name_taken();

}  // namespace ovf
