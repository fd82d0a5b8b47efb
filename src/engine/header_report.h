// What a table's header says, for whoever looks for a fault.
#pragma once

#include "engine/table.h"

namespace ovf {

/// Writes it to the debug channel, a line for each fact; does nothing while nobody listens there.
void tell_header(table& opened) noexcept;

}  // namespace ovf
