// Rows read in the order of the file though they are wanted in another: a row that stands far from the
// one before costs a look into the file.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "engine/table.h"
#include "table/work_progress.h"

namespace ovf {

/// What records that wait for their turn may take.
inline constexpr std::size_t waiting_memory = std::size_t{256} << 20;

inline void move_to_row(table& from, std::uint64_t row) {
  if (from.currentRow() + 1 == row) {
    from.nextRow();
  } else {
    from.goToRow(row);
  }
}

/// Moves to each of the rows in the order of the file and calls `take(place)` there, `place` being where
/// the row stands in `rows`. Each is a step of the work.
template <class Take>
void walk_in_file_order(table& from, std::span<const std::uint32_t> rows, work_progress& work, Take take) {
  std::vector<std::uint64_t> in_file_order(rows.size());
  for (std::size_t place = 0; place < rows.size(); ++place) {
    in_file_order[place] = std::uint64_t{rows[place]} << 32 | place;
  }
  std::ranges::sort(in_file_order);
  for (const std::uint64_t next : in_file_order) {
    move_to_row(from, next >> 32);
    take(static_cast<std::size_t>(next & 0xFFFFFFFFU));
    work.step();
  }
}

/// A row is a step when it is read and another when it is written, whether it has to wait in between or
/// not.
inline constexpr std::uint64_t steps_per_copied_row = 2;

/// Calls `body(part)` for one part of the rows after the other, each as many as may wait together, their
/// places in the order of the file included.
template <class Body>
void in_parts(std::span<const std::uint32_t> rows, std::size_t record_bytes, std::size_t memory, Body body) {
  const std::size_t at_once = std::max<std::size_t>(1, memory / (record_bytes + sizeof(std::uint64_t)));
  while (!rows.empty()) {
    const auto part = rows.first(std::min(at_once, rows.size()));
    body(part);
    rows = rows.subspan(part.size());
  }
}

}  // namespace ovf
