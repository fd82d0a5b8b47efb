// The smallest and largest values of a table's numeric columns, found by one walk when they are first
// asked for and widened by every value that is stored from then on. They are never found anew: storing
// over an extreme does not narrow them, and neither does opening another file.
#pragma once

#include <optional>
#include <vector>

#include "table/table_core.h"

namespace ovf {

class column_ranges {
 public:
  bool are_known() const noexcept { return known_; }
  /// Walks the table and leaves the cursor as a host's own walk and its `GetRowAt` back would. Does
  /// nothing without a schema, which says how many columns there are and which of them hold numbers. A
  /// row that cannot be read throws, and the ranges stay unknown.
  void find(table_core& core);

  /// −1e30 for a column without values; nothing for a column that was not there during the walk.
  std::optional<double> minimum(LONG column) const noexcept;
  std::optional<double> maximum(LONG column) const noexcept;

  /// Widens a column's range by a value, unless it is a special one or the ranges are not known yet.
  void take(LONG column, double value) noexcept {
    if (!ranges_.empty()) widen(column, value);
  }

  /// The same by all values that `other`, of the same columns, was widened by.
  void take(const column_ranges& other) noexcept;

 private:
  struct range {
    double low;
    double high;
  };

  void walk(table_core& core);
  void widen(LONG column, double value) noexcept;
  const range* of(LONG column) const noexcept;

  std::vector<range> ranges_;
  bool known_ = false;
};

}  // namespace ovf
