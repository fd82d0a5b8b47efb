// The condition of --where, and the rows of a table that it lets through.
#pragma once

#include <optional>
#include <string>

#include "table_view.h"

namespace command {

class row_condition {
 public:
  /// Gives the condition to the table. Throws `failure` for one that is bad (with a mark under the place),
  /// names a column that the table lacks or none at all, and when there is no evaluator. `view` must
  /// outlive the condition.
  row_condition(const table_view& view, const std::string& expression);

  /// Whether the current row passes. Throws `failure`.
  bool passes() const;

 private:
  const table_view& view_;
  const field_view* blank_passes_ = nullptr;  ///< the one column, a text, whose blank rows pass
};

/// The condition of an option that may be missing.
std::optional<row_condition> make_condition(const table_view& view,
                                            const std::optional<std::string>& expression);

/// Goes through the rows in order.
class row_walk {
 public:
  /// Without a condition every row counts. Both must outlive the walk.
  explicit row_walk(table_view& view, const std::optional<row_condition>& condition = {})
      : view_(view), condition_(condition ? &*condition : nullptr) {}
  row_walk(table_view&, std::optional<row_condition>&&) = delete;

  /// Leaves out the rows before this one, which must exist, without a look at them. For a walk that has
  /// not begun.
  void start_before(LONG row) noexcept { row_ = row - 1; }
  /// To the next row that passes; false behind the last one. Throws `failure`.
  bool next();
  /// The row, from 1; behind the last one the number of rows.
  LONG row() const noexcept { return row_; }

 private:
  table_view& view_;
  const row_condition* condition_;
  LONG row_ = 0;
  bool begun_ = false;
};

}  // namespace command
