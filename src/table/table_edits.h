// The edits that make a table's file anew: sorted, with other columns, with fewer rows. Each is a copy
// that takes the file's place, or throws and leaves the old table (table_replacement.h), also when the
// host that hears of the work stops it (work_stopped). A file that another program changed since the
// object opened it is not replaced. What is said then: edit_words.h.
#pragma once

#include "table/cell_copy.h"
#include "table/table_replacement.h"

namespace ovf {

/// Puts the rows in the order of a column (sort_order.h).
void sort_table(table_core& core, LONG column, bool ascending);

/// Makes the table with the rows of these numbers, in this order, under a schema whose columns have their
/// values from those of the same numbers.
void keep_rows(table_core& core, IOvSchema& schema, std::span<const std::uint32_t> rows,
               bool keep_description);

/// Makes the table under another schema, for whose columns the plan is, with the rows of these numbers.
/// Throws cell_error besides.
void rebuild_table(table_core& core, IOvSchema& schema, const cell_plan& plan,
                   std::span<const std::uint32_t> rows, bool keep_description);

/// All rows' numbers in order. Throws when the last row cannot be read: a header may promise more rows
/// than any memory has room for.
std::vector<std::uint32_t> all_rows(table_core& core);

}  // namespace ovf
