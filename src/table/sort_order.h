// In which order the rows of a table stand when they are sorted by one column.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/table.h"
#include "table/work_progress.h"

namespace ovf {

/// The key of one row, small so that sorting moves little: a number, or the first characters of a
/// text packed so that they compare like the text.
struct CSortEntry {
  union {
    double value;
    std::uint64_t prefix;
  };
  std::uint32_t row;  ///< counted from 1
};

/// Whether a number goes before another: the smaller one does, and every number before what is none.
bool goes_before(double one, double other) noexcept;
/// Whether a text goes before another: the one with the greater code unit where they differ first, or the
/// longer one where one begins with the other. So texts run down where numbers run up: hosts rely on it.
bool goes_before(wide_view one, wide_view other) noexcept;

/// The rows of the table in the order of a column, by the rule above when `ascending` and the other way
/// round otherwise; rows of equal keys stand in any order. Reads the whole table once, moves its current
/// row, and throws what reading throws. Each row is a step of the work, which may be stopped.
std::vector<std::uint32_t> sorted_rows(table& from, std::uint64_t column, bool ascending,
                                       work_progress& work);

}  // namespace ovf
