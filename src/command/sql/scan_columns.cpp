#include "sql/scan_columns.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "sql/widened_float.h"

namespace command {
namespace {

/// The rows of a batch that go out, in their order.
class chosen_rows {
 public:
  explicit chosen_rows(const range_reader& reader) noexcept
      : rows_(reader.chosen()), count_(rows_ != nullptr ? rows_->size() : reader.rows()) {}
  std::size_t count() const noexcept { return count_; }
  bool are_all() const noexcept { return rows_ == nullptr; }
  std::size_t operator[](std::size_t i) const noexcept { return rows_ != nullptr ? (*rows_)[i] : i; }

 private:
  const std::vector<std::uint32_t>* rows_;
  std::size_t count_;
};

bool is_null(const std::uint8_t* valid, std::size_t row) noexcept {
  return valid != nullptr && (valid[row / 8] >> (row % 8) & 1) == 0;
}

const std::uint8_t* validity_of(const ArrowArray& column) noexcept {
  return column.null_count == 0 ? nullptr : static_cast<const std::uint8_t*>(column.buffers[0]);
}

void copy_nulls(const duckdb::functions& library, const std::uint8_t* valid, const chosen_rows& rows,
                duckdb::vector vector) {
  if (valid == nullptr) return;
  library.vector_ensure_validity_writable(vector);
  std::uint64_t* const out = library.vector_get_validity(vector);
  if (rows.are_all()) {
    std::memcpy(out, valid, (rows.count() + 7) / 8);
    return;
  }
  for (std::size_t i = 0; i < rows.count(); ++i) {
    if (is_null(valid, rows[i])) out[i / 64] &= ~(std::uint64_t{1} << (i % 64));
  }
}

void copy_widened(const ArrowArray& column, const std::uint8_t* nan_for, const chosen_rows& rows,
                  double* out) {
  const float* const in = ovfile::values_of<float>(column);
  // Grades of a few digits repeat, and absent ones more than all others.
  float last = 0;
  double last_widened = 0;
  for (std::size_t i = 0; i < rows.count(); ++i) {
    const float value = in[rows[i]];
    if (value != last) last_widened = widened(last = value);
    out[i] = is_null(nan_for, rows[i]) ? std::numeric_limits<double>::quiet_NaN() : last_widened;
    if (value == 0) out[i] = static_cast<double>(value);  // there are two zeros
  }
}

template <class Value>
void copy_numbers(const ArrowArray& column, const std::uint8_t* nan_for, const chosen_rows& rows,
                  void* target) {
  const Value* const in = ovfile::values_of<Value>(column);
  Value* const out = static_cast<Value*>(target);
  if (rows.are_all()) {
    std::memcpy(out, in, rows.count() * sizeof(Value));
  } else {
    for (std::size_t i = 0; i < rows.count(); ++i) out[i] = in[rows[i]];
  }
  if (nan_for == nullptr) return;
  for (std::size_t i = 0; i < rows.count(); ++i) {
    if (is_null(nan_for, rows[i])) out[i] = std::numeric_limits<Value>::quiet_NaN();
  }
}

void copy_texts(const duckdb::functions& library, const ArrowArray& column, const std::uint8_t* valid,
                const chosen_rows& rows, duckdb::vector vector) {
  const auto* const offsets = static_cast<const std::int32_t*>(column.buffers[1]);
  const auto* const bytes = static_cast<const char*>(column.buffers[2]);
  auto* const out = static_cast<duckdb::text_value*>(library.vector_get_data(vector));
  for (std::size_t i = 0; i < rows.count(); ++i) {
    const std::size_t row = rows[i];
    const auto begin = static_cast<std::size_t>(offsets[row]);
    const std::size_t length = static_cast<std::size_t>(offsets[row + 1]) - begin;
    if (is_null(valid, row)) continue;
    if (length > duckdb::text_value::most_inlined) {
      library.vector_assign_string_element_len(vector, i, bytes + begin, length);
      continue;
    }
    // Texts are compared by all their bytes: those behind the text are zero.
    duckdb::text_value value{};
    value.length = static_cast<std::uint32_t>(length);
    if (length > 0) std::memcpy(value.inlined, bytes + begin, length);
    out[i] = value;
  }
}

}  // namespace

void copy_column(const duckdb::functions& library, const range_reader& reader, std::size_t i,
                 const column_form& form, duckdb::vector vector) {
  const ArrowArray& column = reader.column(i);
  const chosen_rows rows(reader);
  const std::uint8_t* const valid = validity_of(column);
  if (form.is_text) {
    copy_nulls(library, valid, rows, vector);
    copy_texts(library, column, valid, rows, vector);
    return;
  }
  void* const target = library.vector_get_data(vector);
  const std::uint8_t* const nan_for = form.absent_is_nan ? valid : nullptr;
  if (form.is_widened) {
    copy_widened(column, nan_for, rows, static_cast<double*>(target));
  } else if (form.is_float) {
    copy_numbers<float>(column, nan_for, rows, target);
  } else {
    copy_numbers<double>(column, nan_for, rows, target);
  }
  if (!form.absent_is_nan) copy_nulls(library, valid, rows, vector);
}

}  // namespace command
