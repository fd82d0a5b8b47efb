// A table made anew from chosen rows and columns of itself.
#pragma once

#include <vector>

#include "table_view.h"

namespace command {

/// Each puts a new table in the place of that of `view` and closes it. Throws `failure`, and `interrupted`
/// when a stop was asked for before the new table stood there; the old table stays then.

/// Of these rows, in this order, each at most once.
void keep_rows(const table_view& view, const std::vector<LONG>& rows);
/// Of all rows with the columns of `schema`; the i-th has the values of column `columns[i]`, or its default
/// where that is 0.
void rebuild_columns(const table_view& view, IOvSchema& schema, const std::vector<LONG>& columns);

}  // namespace command
