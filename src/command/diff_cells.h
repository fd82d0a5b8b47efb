// The cells of two tables' rows, as a comparison looks at them.
#pragma once

#include <string>
#include <vector>

#include "diff_columns.h"

namespace command {

struct diff_cell {
  double number = 0;  ///< of a number, a float as the number that it prints as where that matters
  std::string text;   ///< of a text
};

/// One side of the comparison: a table with its half of the shared columns.
class diff_side {
 public:
  using half = field_view column_pair::*;

  /// `as_printed`: floats become the numbers that they print as, so that 0.1 is 0.1 in both precisions.
  diff_side(table_view& view, const std::vector<column_pair>& columns, half side, bool as_printed);

  LONG rows() const noexcept { return view_.rows(); }
  std::size_t columns() const noexcept { return fields_.size(); }
  /// Goes to a row, the cheap way where it is the next one.
  void go_to(LONG row);
  /// The current row's cells; as many as there are columns.
  void read(diff_cell* cells) const;
  /// The current row's key; no two look alike. `key` are columns of this side.
  void read_key(std::string& words, const std::vector<column_pair>& key) const;
  /// The row as a line of output.
  std::string line(LONG row, const diff_cell* cells) const;
  /// What a row's cells may take in memory.
  std::size_t bytes_of_row() const noexcept;
  bool is_absent_here(double number) const noexcept;
  bool is_text(std::size_t column) const noexcept { return fields_[column].is_text; }

 private:
  table_view& view_;
  half side_;
  std::vector<field_view> fields_;
  bool as_printed_;
  LONG current_ = 0;
};

}  // namespace command
