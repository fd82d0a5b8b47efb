#include "table/row_copy.h"

#include <algorithm>
#include <vector>

namespace ovf {
namespace {

void append(table& to, const std::byte* record) {
  to.addRow();
  to.writeRecord(0, record);
}

/// Rows that stand in the order of the file need not wait.
void copy_straight(table& from, table& to, std::span<const std::uint32_t> rows, work_progress& work) {
  std::vector<std::byte> record(to.recordBytes());
  for (const std::uint32_t row : rows) {
    move_to_row(from, row);
    from.readFreshRecord(record.data());
    append(to, record.data());
    work.step(steps_per_copied_row);
  }
}

}  // namespace

bool have_like_records(table& one, table& other) {
  const std::uint64_t fields = one.getFieldCount();
  if (one.isDouble() != other.isDouble() || other.getFieldCount() != fields) return false;
  const auto is_in_rows = [](table& of, std::uint64_t i) { return of.fields().at(i).has_stored_words(); };
  for (std::uint64_t i = 0; i < fields; ++i) {
    if (one.getFieldType(i) != other.getFieldType(i) || one.getFieldWidth(i) != other.getFieldWidth(i) ||
        is_in_rows(one, i) != is_in_rows(other, i)) {
      return false;
    }
  }
  return true;
}

void copy_rows(table& from, table& to, std::span<const std::uint32_t> rows, work_progress& work,
               std::size_t memory) {
  if (std::ranges::is_sorted(rows)) return copy_straight(from, to, rows, work);
  const std::size_t bytes = to.recordBytes();
  std::vector<std::byte> records;
  in_parts(rows, bytes, memory, [&](std::span<const std::uint32_t> part) {
    records.resize(part.size() * bytes);
    walk_in_file_order(from, part, work,
                       [&](std::size_t place) { from.readFreshRecord(records.data() + place * bytes); });
    for (std::size_t place = 0; place < part.size(); ++place) {
      append(to, records.data() + place * bytes);
      work.step();
    }
  });
}

}  // namespace ovf
