// What `Repair` has to do for a new schema.
#pragma once

#include <optional>
#include <vector>

#include "table/cell_copy.h"

namespace ovf {

/// Where the columns of the new schema have their values from; nothing when both have the same names, in
/// whatever order. Throws MyExceptionClass for a schema that tells two types of one field.
std::optional<std::vector<column_origin>> repair_plan(IOvSchema& held, IOvSchema& wanted);

}  // namespace ovf
