// Entering the class into the system's registry, where hosts look it up.
#pragma once

#include "ovfile/component.h"

namespace ovf::filter {

HRESULT register_class() noexcept;
HRESULT unregister_class() noexcept;

}  // namespace ovf::filter
