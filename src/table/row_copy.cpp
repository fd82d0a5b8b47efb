#include "table/row_copy.h"

#include <algorithm>
#include <numeric>

namespace ovf {
namespace {

void move_to(table& from, std::uint32_t row) {
  if (from.currentRow() + 1 == row) {
    from.nextRow();
  } else {
    from.goToRow(row);
  }
}

void append(table& to, const std::byte* record) {
  to.addRow();
  to.writeRecord(0, record);
}

/// Rows that stand in the order of the file need not wait.
void copy_straight(table& from, table& to, std::span<const std::uint32_t> rows) {
  std::vector<std::byte> record(from.recordBytes());
  for (const std::uint32_t row : rows) {
    move_to(from, row);
    from.readFreshRecord(record.data());
    append(to, record.data());
  }
}

/// Reads the rows in the order of the file, each into its place, and appends them.
void copy_gathered(table& from, table& to, std::span<const std::uint32_t> rows,
                   std::vector<std::byte>& records) {
  std::vector<std::uint64_t> in_file_order(rows.size());
  for (std::size_t place = 0; place < rows.size(); ++place) {
    in_file_order[place] = std::uint64_t{rows[place]} << 32 | place;
  }
  std::ranges::sort(in_file_order);
  const std::size_t bytes = from.recordBytes();
  records.resize(rows.size() * bytes);
  for (const std::uint64_t next : in_file_order) {
    move_to(from, static_cast<std::uint32_t>(next >> 32));
    from.readFreshRecord(records.data() + static_cast<std::size_t>(next & 0xFFFFFFFFU) * bytes);
  }
  for (std::size_t place = 0; place < rows.size(); ++place) append(to, records.data() + place * bytes);
}

}  // namespace

bool have_like_records(table& one, table& other) {
  const std::uint64_t fields = one.getFieldCount();
  if (one.isDouble() != other.isDouble() || other.getFieldCount() != fields) return false;
  for (std::uint64_t i = 0; i < fields; ++i) {
    if (one.getFieldType(i) != other.getFieldType(i) || one.getFieldWidth(i) != other.getFieldWidth(i) ||
        one.isImplicit(i) != other.isImplicit(i)) {
      return false;
    }
  }
  return true;
}

void copy_rows(table& from, table& to, std::span<const std::uint32_t> rows, std::size_t memory) {
  if (std::ranges::is_sorted(rows)) return copy_straight(from, to, rows);
  const std::size_t at_once = std::max<std::size_t>(1, memory / from.recordBytes());
  std::vector<std::byte> records;
  while (!rows.empty()) {
    const auto part = rows.first(std::min(at_once, rows.size()));
    copy_gathered(from, to, part, records);
    rows = rows.subspan(part.size());
  }
}

std::vector<std::uint32_t> all_rows(table& of) {
  std::vector<std::uint32_t> rows(static_cast<std::size_t>(of.getRowCount()));
  std::iota(rows.begin(), rows.end(), 1U);
  return rows;
}

}  // namespace ovf
