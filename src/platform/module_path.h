// Where this module lies on disk.
#pragma once

#include "platform/text.h"

namespace ovf {

/// The full path of the module (the library, or the program it is linked into); empty when the system
/// cannot tell.
wide module_path();

}  // namespace ovf
