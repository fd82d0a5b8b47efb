// The edits that make a table's file anew: sorted, with other columns, with fewer rows. Each is a copy
// that takes the file's place; the words for what goes wrong are the caller's.
#pragma once

#include "table/cell_copy.h"
#include "table/table_replacement.h"

namespace ovf {

/// No copy could be made.
struct no_copy_made {};
/// The copy was not let into the file's place; the old table is open.
struct not_replaced {
  wide path;
  std::uint32_t code;
};
/// The file, old or new, could not be opened again.
struct not_reopened {};

/// Puts the rows in the order of a column (sort_order.h).
void sort_table(table_core& core, LONG column, bool ascending);

/// Keeps the rows of these numbers, in this order.
void keep_rows(table_core& core, std::span<const std::uint32_t> rows);

/// Makes the table under another schema, whose column i has its values from `origins[i - 1]`, with the
/// rows of these numbers. Throws cell_error besides.
void rebuild_table(table_core& core, IOvSchema& schema, std::span<const column_origin> origins,
                   std::span<const std::uint32_t> rows, bool keep_description);

}  // namespace ovf
