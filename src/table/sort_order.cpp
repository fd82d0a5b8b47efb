#include "table/sort_order.h"

#include <algorithm>
#include <cmath>

#include "platform/variant.h"
#include "storage/words.h"

namespace ovf {
namespace {

/// Calls `take(row)` on each row in file order.
template <class Take>
void for_each_row(table& from, work_progress& work, Take take) {
  const std::uint64_t rows = from.getRowCount();
  if (rows == 0) return;
  from.firstRow();
  for (std::uint64_t row = 1; row < rows; ++row) {
    take(static_cast<std::uint32_t>(row));
    work.step();
    from.nextRow();
  }
  take(static_cast<std::uint32_t>(rows));
  work.step();
}

double number_of(table& from, std::uint64_t column) {
  const std::byte* place = from.storedNumber(column);
  if (place == nullptr) return to_double(from.getValue(column));
  if (from.isDouble()) return load_number<double_precision>(place, byte_order::native);
  return static_cast<double>(load_number<single_precision>(place, byte_order::native));
}

std::vector<CSortEntry> sorted_by_number(table& from, std::uint64_t column, work_progress& work) {
  std::vector<CSortEntry> entries;
  entries.reserve(static_cast<std::size_t>(from.getRowCount()));
  for_each_row(from, work, [&](std::uint32_t row) { entries.push_back({{number_of(from, column)}, row}); });
  std::ranges::sort(entries, [](const CSortEntry& one, const CSortEntry& other) {
    return goes_before(one.value, other.value);
  });
  return entries;
}

/// The texts of a column, one behind the other.
class column_texts {
 public:
  column_texts(table& from, std::uint64_t column, work_progress& work) {
    ends_.reserve(static_cast<std::size_t>(from.getRowCount()));
    for_each_row(from, work, [&](std::uint32_t) { add(from.getValue(column)); });
  }

  wide_view of(std::uint32_t row) const noexcept {
    const std::size_t begin = row == 1 ? 0 : ends_[row - 2];
    return wide_view(units_).substr(begin, ends_[row - 1] - begin);
  }
  std::uint32_t rows() const noexcept { return static_cast<std::uint32_t>(ends_.size()); }

  /// The first characters of a text, packed so that they compare like it: eight of them where all the
  /// column's fit a byte, else four. Behind a shorter text stands the smallest character.
  std::uint64_t prefix_of(std::uint32_t row) const noexcept {
    const wide_view text = of(row);
    const std::size_t places = prefix_length();
    std::uint64_t prefix = 0;
    for (std::size_t i = 0; i < places; ++i) {
      prefix = prefix << (64 / places) | (i < text.size() ? static_cast<char16_t>(text[i]) : 0U);
    }
    return prefix;
  }
  /// Whether texts with the same prefix are the same.
  bool prefix_tells_all() const noexcept { return same_lengths_ && shortest_ <= prefix_length(); }

 private:
  void add(const variant& value) {
    const wide_view text = value.type() == VT_BSTR ? view_of(value.get().bstrVal) : wide_view();
    same_lengths_ = same_lengths_ && (ends_.empty() || text.size() == shortest_);
    shortest_ = ends_.empty() ? text.size() : std::min(shortest_, text.size());
    for (const OLECHAR unit : text) all_ |= static_cast<char16_t>(unit);
    units_.append(text);
    ends_.push_back(units_.size());
  }
  std::size_t prefix_length() const noexcept { return all_ < 0x100 ? 8 : 4; }

  wide units_;
  std::vector<std::size_t> ends_;
  unsigned all_ = 0;  ///< the bits of every character
  std::size_t shortest_ = 0;
  bool same_lengths_ = true;
};

std::vector<CSortEntry> sorted_by_text(table& from, std::uint64_t column, work_progress& work) {
  const column_texts texts(from, column, work);
  std::vector<CSortEntry> entries(texts.rows());
  for (std::uint32_t row = 1; row <= texts.rows(); ++row) {
    entries[row - 1].row = row;
    entries[row - 1].prefix = texts.prefix_of(row);
  }
  const bool prefix_tells_all = texts.prefix_tells_all();
  std::ranges::sort(entries, [&](const CSortEntry& one, const CSortEntry& other) {
    if (one.prefix != other.prefix || prefix_tells_all) return one.prefix > other.prefix;
    return goes_before(texts.of(one.row), texts.of(other.row));
  });
  return entries;
}

}  // namespace

bool goes_before(double one, double other) noexcept {
  if (std::isnan(one)) return false;
  return std::isnan(other) || one < other;
}

bool goes_before(wide_view one, wide_view other) noexcept {
  const std::size_t shared = std::min(one.size(), other.size());
  for (std::size_t i = 0; i < shared; ++i) {
    const auto unit = static_cast<char16_t>(one[i]);
    const auto other_unit = static_cast<char16_t>(other[i]);
    if (unit != other_unit) return unit > other_unit;
  }
  return one.size() > other.size();
}

std::vector<std::uint32_t> sorted_rows(table& from, std::uint64_t column, bool ascending,
                                       work_progress& work) {
  // A header may promise more rows than the file has, and than any memory has room for.
  from.lastRow();
  const bool numeric = from.getFieldType(column) == field_kind::numeric;
  const std::vector<CSortEntry> entries =
      numeric ? sorted_by_number(from, column, work) : sorted_by_text(from, column, work);
  std::vector<std::uint32_t> rows(entries.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    rows[i] = entries[ascending ? i : rows.size() - 1 - i].row;
  }
  return rows;
}

}  // namespace ovf
