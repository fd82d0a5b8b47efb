// How the rows of two tables differ in the columns that they share.
#pragma once

#include <vector>

#include "diff_cells.h"
#include "diff_columns.h"

namespace command {

class row_comparison {
 public:
  /// Two numbers are equal when they are `tolerance` or less apart; absent ones are equal to absent ones
  /// alone. All must outlive the comparison.
  row_comparison(table_view& before, table_view& after, const std::vector<column_pair>& columns,
                 double tolerance, diff_output& out);

  /// The first row with the first, and so on.
  void compare_in_order();
  /// Each row with the one that has the same key, of several ones the first with the first, and so on. Keeps
  /// the keys of the new table in memory, and of the old one some rows at a time, for which the new one is
  /// read in the order of its file.
  void compare_by_key(const std::vector<column_pair>& key);

 private:
  class piece;
  class steps;

  bool same(const diff_cell* before, const diff_cell* after) const;
  void compare_piece(piece& rows, steps& work);

  diff_side before_;
  diff_side after_;
  double tolerance_;
  diff_output& out_;
};

}  // namespace command
