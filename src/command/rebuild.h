// A table made anew from chosen rows and columns of itself.
#pragma once

#include <vector>

#include "table_view.h"

namespace command {

/// Puts a table of these rows of `view` (in this order, each at most once; null: all) in the place of the old
/// one and closes it. With a schema the table gets its columns, of which the i-th has the values of column
/// `columns[i]`, or its default where that is 0. Throws `failure`, and `interrupted` when a stop was asked
/// for before the new table stood there; the old table stays then.
void rebuild(const table_view& view, const std::vector<LONG>* rows, IOvSchema* schema = nullptr,
             const std::vector<LONG>& columns = {});

}  // namespace command
