// Some of a table's rows: a bit for each up to the last chosen one.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "table_view.h"

namespace command {

class row_choice {
 public:
  void choose(LONG row) {
    if (has(row)) return;
    const auto needed = static_cast<std::size_t>(row);
    if (chosen_.size() < needed) chosen_.resize(needed);
    chosen_[needed - 1] = true;
    ++count_;
  }
  bool has(LONG row) const { return row <= last() && chosen_[static_cast<std::size_t>(row) - 1]; }
  LONG count() const noexcept { return count_; }
  /// 0: none is chosen.
  LONG last() const noexcept { return static_cast<LONG>(chosen_.size()); }
  /// The first chosen row behind `row`; 0: there is none.
  LONG next(LONG row) const {
    while (row < last()) {
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
