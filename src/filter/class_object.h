// The class object through which hosts make evaluators.
#pragma once

#include "ovfile/component.h"

namespace ovf::filter {

/// There is one for the life of the module; every reference to it keeps the module loaded. Evaluators
/// cannot be made inside another object (CLASS_E_NOAGGREGATION).
IClassFactory& class_object() noexcept;

}  // namespace ovf::filter
