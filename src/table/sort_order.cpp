#include "table/sort_order.h"

#include <algorithm>
#include <cmath>

#include "platform/variant.h"
#include "storage/words.h"

namespace ovf {
namespace {

constexpr std::size_t prefix_units = sizeof(std::uint64_t) / sizeof(char16_t);

/// Calls `take(row)` on each row in file order.
template <class Take>
void for_each_row(table& from, Take take) {
  const std::uint64_t rows = from.getRowCount();
  if (rows == 0) return;
  from.firstRow();
  for (std::uint64_t row = 1; row < rows; ++row) {
    take(static_cast<std::uint32_t>(row));
    from.nextRow();
  }
  take(static_cast<std::uint32_t>(rows));
}

double number_of(table& from, std::uint64_t column) {
  const std::byte* place = from.storedNumber(column);
  if (place == nullptr) return to_double(from.getValue(column));
  if (from.isDouble()) return load_number<double_precision>(place, byte_order::native);
  return static_cast<double>(load_number<single_precision>(place, byte_order::native));
}

std::vector<CSortEntry> sorted_by_number(table& from, std::uint64_t column) {
  std::vector<CSortEntry> entries;
  entries.reserve(static_cast<std::size_t>(from.getRowCount()));
  for_each_row(from, [&](std::uint32_t row) { entries.push_back({{number_of(from, column)}, row}); });
  std::ranges::sort(entries, [](const CSortEntry& one, const CSortEntry& other) {
    return goes_before(one.value, other.value);
  });
  return entries;
}

std::uint64_t prefix_of(wide_view text) noexcept {
  std::uint64_t prefix = 0;
  for (std::size_t i = 0; i < prefix_units; ++i) {
    prefix = prefix << 16 | (i < text.size() ? static_cast<char16_t>(text[i]) : 0U);
  }
  return prefix;
}

/// The texts of a column behind their first characters, one after the other.
class text_ends {
 public:
  void add(wide_view text) {
    const wide_view end = text.substr(std::min(text.size(), prefix_units));
    units_.insert(units_.end(), end.begin(), end.end());
    ends_.push_back({units_.size(), text.size()});
  }
  wide_view end_of(std::uint32_t row) const noexcept {
    const std::size_t begin = row == 1 ? 0 : ends_[row - 2].end;
    return wide_view(units_).substr(begin, ends_[row - 1].end - begin);
  }
  std::size_t length_of(std::uint32_t row) const noexcept { return ends_[row - 1].length; }

 private:
  struct place {
    std::size_t end;
    std::size_t length;
  };
  wide units_;
  std::vector<place> ends_;
};

wide text_of(table& from, std::uint64_t column) {
  const variant value = from.getValue(column);
  return value.type() == VT_BSTR ? wide(view_of(value.get().bstrVal)) : wide();
}

std::vector<CSortEntry> sorted_by_text(table& from, std::uint64_t column) {
  std::vector<CSortEntry> entries;
  entries.reserve(static_cast<std::size_t>(from.getRowCount()));
  text_ends ends;
  for_each_row(from, [&](std::uint32_t row) {
    const wide text = text_of(from, column);
    CSortEntry entry{{0}, row};
    entry.prefix = prefix_of(text);
    entries.push_back(entry);
    ends.add(text);
  });
  std::ranges::sort(entries, [&](const CSortEntry& one, const CSortEntry& other) {
    if (one.prefix != other.prefix) return one.prefix > other.prefix;
    // A text shorter than its prefix is filled up with the smallest character, so that its length counts.
    const std::size_t length = ends.length_of(one.row);
    const std::size_t other_length = ends.length_of(other.row);
    if (length < prefix_units || other_length < prefix_units) return length > other_length;
    return goes_before(ends.end_of(one.row), ends.end_of(other.row));
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

std::vector<std::uint32_t> sorted_rows(table& from, std::uint64_t column, bool ascending) {
  const bool numeric = from.getFieldType(column) == field_kind::numeric;
  const std::vector<CSortEntry> entries =
      numeric ? sorted_by_number(from, column) : sorted_by_text(from, column);
  std::vector<std::uint32_t> rows(entries.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    rows[i] = entries[ascending ? i : rows.size() - 1 - i].row;
  }
  return rows;
}

}  // namespace ovf
