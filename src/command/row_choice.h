// Some of a table's rows: a bit for each.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "table_view.h"

namespace command {

class row_choice {
 public:
  /// Of a table of so many rows; none is chosen.
  explicit row_choice(LONG rows) : chosen_(static_cast<std::size_t>(rows)) {}

  void choose(LONG row) {
    if (!has(row)) ++count_;
    chosen_[static_cast<std::size_t>(row) - 1] = true;
  }
  bool has(LONG row) const { return chosen_[static_cast<std::size_t>(row) - 1]; }
  LONG count() const noexcept { return count_; }
  LONG rows() const noexcept { return static_cast<LONG>(chosen_.size()); }
  /// The first chosen row behind `row`; 0: there is none.
  LONG next(LONG row) const {
    while (row < rows()) {
      if (has(++row)) return row;
    }
    return 0;
  }

 private:
  std::vector<bool> chosen_;
  LONG count_ = 0;
};

/// The rows that meet the condition, all where there is none. Throws `failure`.
row_choice rows_that_pass(table_view& view, const std::optional<std::string>& condition);

/// The rows of a list such as `3,10-20`. Throws `wrong_usage` for what is no list, `failure` for rows that
/// the table lacks.
row_choice listed_rows(const table_view& view, const std::string& list);

}  // namespace command
