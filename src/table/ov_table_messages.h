// Messages of the scriptable table object that several of its methods report.
#pragma once

#include "base/text.h"

namespace ovf {

inline constexpr wide_view get_column_refused = OLESTR("GetColumn failed, current row is not valid");

}  // namespace ovf
