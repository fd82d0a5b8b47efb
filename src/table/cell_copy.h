// Rows of one table appended to another of a different shape, value by value.
#pragma once

#include "ovfile/ovfile.h"
#include "table/row_walk.h"

namespace ovf {

/// Where a column of the new table has its values from.
struct column_origin {
  LONG column = 0;                     ///< of the old table; 0: the default that a new row has
  OvColumnType type = ovColumnDouble;  ///< the getter and setter that a value goes through
};

/// What becomes of a text, or of a number as text, that is longer than its new column. Trailing blanks
/// never count.
enum class long_texts { cut, refused };

/// How a value gets from the one table to the other where the columns differ.
enum class cell_road {
  typed,    ///< read and written as what the new column's origin says
  variants  ///< as a host's GetColumn and SetColumn: of the old column's type, converted when it is written
};

struct cell_plan {
  std::span<const column_origin> origins;  ///< of the new columns, in their order
  long_texts longer = long_texts::cut;
  cell_road road = cell_road::typed;
};

/// A value that the other column cannot take, and where it stands.
class cell_error : public MyExceptionClass {
 public:
  cell_error(wide_view reason, LONG row, LONG column);
  LONG row() const noexcept { return row_; }
  LONG column() const noexcept { return column_; }

 private:
  LONG row_;
  LONG column_;
};

/// Appends the rows of `from` in the order of their numbers to `to`, whose columns the plan describes.
/// Reads in the order of the file, `memory` and steps of the work as for `copy_rows` (row_copy.h). Throws
/// cell_error, work_stopped, and what reading and writing throw.
void copy_cells(table& from, table& to, const cell_plan& plan, std::span<const std::uint32_t> rows,
                work_progress& work, std::size_t memory = waiting_memory);

}  // namespace ovf
