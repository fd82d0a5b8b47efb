// The component that evaluates conditions (ovfile/filter.h), as this process finds it.
#pragma once

#include "ovfile/filter.h"
#include "ovfile/smart.h"

template <>
inline constexpr IID ovfile::iid_of<IOvFilter> = IID_IOvFilter;

namespace command {

/// Sees to it that the library and `new_evaluator` find the component that lies beside the program where
/// none is registered, for this thread, as long as it lives: so may objects of it.
void make_evaluator_known();

/// Empty where there is none.
ovfile::pointer<IOvFilter> new_evaluator();

}  // namespace command
