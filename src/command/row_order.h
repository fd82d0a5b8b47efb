// In which order the rows of a table stand when they are sorted by some of its columns.
#pragma once

#include <vector>

#include "table_view.h"

namespace command {

/// The rows in the order of the first column, of the second one where those are equal, and so on; rows that
/// are equal in all stay as they stood. Ascending numbers are followed by what is no number; texts are
/// compared character by character, and one that another begins with goes before it. Descending is the
/// other way round. Reads the table once. Throws `failure`.
std::vector<LONG> sorted_rows(table_view& view, const std::vector<field_view>& columns, bool descending);

}  // namespace command
