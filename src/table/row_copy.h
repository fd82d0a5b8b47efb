// Rows of one table appended to another, in any order, without one look into the file per row.
#pragma once

#include "table/row_walk.h"

namespace ovf {

/// Whether rows can be copied record by record: the same precision and fields of the same kinds, widths
/// and places, whatever their names.
bool have_like_records(table& one, table& other);

/// Appends the rows of `from` in the order of their numbers to `to`, which has like records and whose
/// file has the native byte order. Reads in the order of the file; records that have to wait for their
/// turn take up to `memory` bytes, and with more of them the file is read as often as it takes. Each row
/// is `steps_per_copied_row` steps of the work. Throws what reading and writing throw, and work_stopped.
void copy_rows(table& from, table& to, std::span<const std::uint32_t> rows, work_progress& work,
               std::size_t memory = waiting_memory);

}  // namespace ovf
