// What several files of the engine refuse with the same text.
#pragma once

#include "base/text.h"

namespace ovf {

inline constexpr wide_view numeric_requested = OLESTR("invalid data type... numeric requested");
inline constexpr wide_view bad_field_index = OLESTR("field index out of range");
inline constexpr wide_view nothing_stored = OLESTR("AddRow failed, the table has no stored fields");

}  // namespace ovf
