#include "table/column_ranges.h"

#include <algorithm>

#include "storage/file_error.h"
#include "storage/special_values.h"
#include "table/column_values.h"

namespace ovf {
namespace {

bool is_special(double value) noexcept {
  return value <= absent_value || value >= top_value || value == trace_value;
}

/// A column that the schema calls numeric.
struct numeric_column {
  std::uint64_t index;
  LONG number;
  bool single;
};

LONG column_count(IOvSchema& schema) {
  LONG count = 0;
  throw_on_failure(schema.get_FieldCount(&count));
  return std::max<LONG>(count, 0);
}

std::vector<numeric_column> numeric_columns(IOvSchema& schema, LONG count) {
  std::vector<numeric_column> found;
  for (LONG column = 1; column <= count; ++column) {
    OvColumnType type{};
    throw_on_failure(schema.GetFieldType(column, &type));
    if (type != ovColumnString) found.push_back({field_index(column), column, type == ovColumnSingle});
  }
  return found;
}

/// The long road to a value; a text that is no number counts as the 0 that its getter hands out.
double converted(const table_core& core, const numeric_column& column) {
  try {
    if (column.single) return static_cast<double>(core.opened().getFloat(column.index));
    return column_as_double(core.opened(), column.number);
  } catch (const MyExceptionClass&) {
    return 0;
  }
}

double value_of(const table_core& core, const numeric_column& column) {
  const table& opened = core.opened();
  const std::byte* place = column.single != opened.isDouble() ? opened.storedNumber(column.index) : nullptr;
  if (place == nullptr) return converted(core, column);
  if (column.single) return static_cast<double>(load_number<single_precision>(place, byte_order::native));
  return load_number<double_precision>(place, byte_order::native);
}

/// After a failure, of which alone the host is told.
void put_back(table_core& core, std::uint64_t row) noexcept {
  try {
    core.row_at(long_of(row));
  } catch (...) {
    // The row cannot be read either; the next access says why.
  }
}

}  // namespace

void column_ranges::widen(LONG column, double value) noexcept {
  if (of(column) == nullptr || is_special(value)) return;
  range& widened = ranges_[static_cast<std::size_t>(column - 1)];
  widened.high = std::max(widened.high, value);
  widened.low = std::min(widened.low, value);
}

void column_ranges::take(const column_ranges& other) noexcept {
  for (std::size_t i = 0; i < other.ranges_.size(); ++i) {
    take(static_cast<LONG>(i + 1), other.ranges_[i].low);
    take(static_cast<LONG>(i + 1), other.ranges_[i].high);
  }
}

const column_ranges::range* column_ranges::of(LONG column) const noexcept {
  if (column < 1 || static_cast<std::size_t>(column) > ranges_.size()) return nullptr;
  return &ranges_[static_cast<std::size_t>(column - 1)];
}

std::optional<double> column_ranges::minimum(LONG column) const noexcept {
  const range* found = of(column);
  return found == nullptr ? std::nullopt : std::optional(found->low);
}

std::optional<double> column_ranges::maximum(LONG column) const noexcept {
  const range* found = of(column);
  return found == nullptr ? std::nullopt : std::optional(found->high);
}

void column_ranges::find(table_core& core) {
  if (known_ || !core.schema) return;
  const std::uint64_t row = core.on_a_row() ? core.opened().currentRow() : 1;
  try {
    walk(core);
  } catch (...) {
    ranges_.clear();
    put_back(core, row);
    throw;
  }
  core.row_at(long_of(row));
  for (range& each : ranges_) {
    if (each.low == top_value) each.low = absent_value;
  }
  known_ = true;
}

void column_ranges::walk(table_core& core) {
  const LONG count = column_count(*core.schema.get());
  const std::vector<numeric_column> columns = numeric_columns(*core.schema.get(), count);
  core.first_row();
  const std::uint64_t rows = core.opened().getRowCount();
  if (rows == 0) return;
  ranges_.assign(static_cast<std::size_t>(count), {top_value, absent_value});
  const bool ends_in_text = columns.empty() || columns.back().number != count;
  for (std::uint64_t row = 1; row <= rows; ++row) {
    for (const numeric_column& column : columns) {
      const double value = value_of(core, column);
      // The first row's values begin the ranges, special or not. Where the last column is a text, the
      // first numeric column begins once more in row 2: hosts have always been given these numbers.
      const bool begins = row == 1 || (row == 2 && ends_in_text && column.number == columns.front().number);
      if (begins) ranges_[static_cast<std::size_t>(column.number - 1)] = {value, value};
      take(column.number, value);
    }
    core.next_row();
  }
}

}  // namespace ovf
