// What `Repair` has to do for a new schema.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "table/cell_copy.h"

namespace ovf {

/// Where the columns of the new schema have their values from, their types not yet; nothing when both have
/// the same names, in whatever order. Throws com_error with the status of a method that fails.
std::optional<std::vector<column_origin>> repair_plan(IOvSchema& held, IOvSchema& wanted);

/// Reads the types of the new columns, of those with values twice. Throws MyExceptionClass for a schema that
/// tells two types of one field, com_error likewise.
void read_types(IOvSchema& wanted, std::span<column_origin> origins);

}  // namespace ovf
