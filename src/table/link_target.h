// Link files: a table whose description begins with LINK names another file, which is opened instead.
#pragma once

#include <optional>

#include "base/text.h"

namespace ovf {

/// The file that a link at `path` leads to, or nothing when the description is not a link's. A target
/// that does not say where it begins lies in the link's own folder.
std::optional<wide> link_target(wide_view description, wide_view path);

}  // namespace ovf
