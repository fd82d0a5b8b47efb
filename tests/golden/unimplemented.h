// Methods that answered E_NOTIMPL: what would have been checked through them is left out, and said.
#pragma once

#include <string>

#include "support/component.h"

namespace ovtest {

/// True when the status says so; the method is then named once at the end of the run, with the number of
/// checks that were left out for it.
bool is_unimplemented(HRESULT status, const std::string& method);

}  // namespace ovtest
