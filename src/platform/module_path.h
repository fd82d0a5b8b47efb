// Where this module lies on disk.
#pragma once

#include "base/text.h"

namespace ovf {

/// The full path of the module (the library, or the program it is linked into), by which it was loaded; empty
/// when the system cannot tell.
wide module_path();

}  // namespace ovf
