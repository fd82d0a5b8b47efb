// What a field may be called.
#pragma once

#include <cstddef>

#include "platform/text.h"

namespace ovf {

/// Characters that a new field's name may have in double precision; 8 in single precision.
std::size_t field_name_limit();

/// Checks length and characters of a new field's name; throws MyExceptionClass with the rule's message.
/// Whether the name is taken is the caller's to ask.
void check_new_field_name(wide_view name, bool is_double);

/// Throws MyExceptionClass "field name already exists".
[[noreturn]] void fail_name_taken();

}  // namespace ovf
