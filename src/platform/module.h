// The module that this code is part of: its string resources. (Where it lies: platform/module_path.h.)
#pragma once

#include <optional>

#include "base/text.h"

namespace ovf {

/// The string resource of that number, at most 1,024 characters of it; nothing when there is none.
std::optional<wide> string_resource(unsigned number);

}  // namespace ovf
