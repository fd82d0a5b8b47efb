#include "engine/ovtable.h"

#include <algorithm>
#include <type_traits>

#include "engine/refusals.h"
#include "engine/values.h"
#include "storage/file_error.h"

namespace ovf {
namespace {

constexpr wide_view string_expected = OLESTR("invalid field type... expected string data");
constexpr wide_view not_a_number = OLESTR("Error: Invalid number");

template <class Number>
Number valid_number(const VARIANT& value) {
  try {
    if constexpr (std::is_same_v<Number, float>) {
      return to_float(value);
    } else {
      return to_double(value);
    }
  } catch (const com_error&) {
    throw MyExceptionClass(wide(not_a_number));
  }
}

}  // namespace

template <class Precision>
basic_ovtable<Precision>::basic_ovtable(std::unique_ptr<file> opened, wide name, bool read_only,
                                        byte_order order)
    : name_(std::move(name)),
      rows_(std::move(opened), absolute_path(name_), read_only,
            Precision::is_double ? byte_order::native : order) {
  is_double_ = Precision::is_double;
  is_read_only_ = read_only;
  record_bytes_ = rows_.record_bytes();
  resolve_columns();
}

template <class Precision>
void basic_ovtable<Precision>::resolve_columns() {
  columns_.clear();
  for (const field& each : rows_.fields()) {
    column resolved;
    if (!each.is_implicit() && each.kind == field_kind::numeric && rows_.order() == byte_order::native) {
      resolved = {static_cast<std::uint32_t>((each.atoms.front().position - 1) * Precision::word_bytes),
                  true};
    }
    columns_.push_back(resolved);
  }
}

template <class Precision>
void basic_ovtable<Precision>::locate(std::uint64_t row) {
  take(rows_.locate(row));
}

template <class Precision>
bool basic_ovtable<Precision>::readAgain() {
  const bool is_known = rows_.read_again();
  restore_record();
  return is_known;
}

template <class Precision>
void basic_ovtable<Precision>::take(row_place place) noexcept {
  record_ = place.record;
  rows_left_in_page_ = place.rows_behind;
}

template <class Precision>
void basic_ovtable<Precision>::addRow() {
  try {
    take(rows_.append());
    current_ = rows_.row_count();
  } catch (...) {
    // The failed try may have brought another page into memory.
    restore_record();
    throw;
  }
}

template <class Precision>
bool basic_ovtable<Precision>::onSetRowCount(std::uint64_t rows) {
  if (rows > rows_.row_count()) return false;
  if (rows == rows_.row_count()) return true;
  drop_record(nullptr);
  try {
    rows_.cut_to(rows);
  } catch (...) {
    current_ = std::min(current_, rows_.row_count());
    restore_record();
    throw;
  }
  current_ = std::min(current_, rows);
  if (current_ > 0) load(current_);
  return true;
}

template <class Precision>
wide basic_ovtable<Precision>::getDescription() {
  return wide_from_ansi(rows_.header().texts(format::description_word, format::description_words_read));
}

template <class Precision>
wide basic_ovtable<Precision>::getFieldName(std::uint64_t index) {
  if (index > rows_.fields().size()) throw MyExceptionClass(wide(bad_field_index));
  return index == rows_.fields().size() ? wide() : rows_.fields().at(index).name;
}

template <class Precision>
std::int64_t basic_ovtable<Precision>::getFieldWidth(std::uint64_t index) {
  return int_of(rows_.fields().at(index).atoms.size() * format::text_word_chars);
}

template <class Precision>
std::uint64_t basic_ovtable<Precision>::getFieldWidthByName(const wide& name) {
  return static_cast<std::uint64_t>(getFieldWidth(getFieldIndex(name)));
}

template <class Precision>
void basic_ovtable<Precision>::rearrange_numbers(std::byte* record) const {
  if (rows_.order() == byte_order::native) return;
  for (const field& each : rows_.fields()) {
    if (each.kind != field_kind::numeric || each.is_implicit()) continue;
    std::byte* place = place_of(each.atoms.front(), record, Precision::word_bytes);
    store_number<Precision>(place, load_number<Precision>(place, rows_.order()), byte_order::native);
  }
}

template <class Precision>
void basic_ovtable<Precision>::readRecord(std::uint64_t, void* buffer) {
  std::memcpy(buffer, record(), record_bytes_);
  rearrange_numbers(static_cast<std::byte*>(buffer));
}

template <class Precision>
void basic_ovtable<Precision>::writeRecord(std::uint64_t, const void* buffer) {
  std::byte* place = record();
  std::memcpy(place, buffer, record_bytes_);
  rearrange_numbers(place);
  rows_.mark_changed(place);
}

template <class Precision>
variant basic_ovtable<Precision>::getValue(std::uint64_t index) {
  const field& from = rows_.fields().at(index);
  const std::byte* words = record();
  if (from.kind == field_kind::numeric) return variant(number_of<Precision>(from, words, rows_.order()));
  const std::string text = text_of(from, words, Precision::word_bytes);
  return text.empty() ? variant() : variant(wide_view(wide_from_ansi(text)));
}

template <class Precision>
const field& basic_ovtable<Precision>::field_of(std::uint64_t index, field_kind kind,
                                                wide_view message) const {
  const field& wanted = rows_.fields().at(index);
  if (wanted.kind != kind) throw MyExceptionClass(wide(message));
  return wanted;
}

template <class Precision>
auto basic_ovtable<Precision>::native_number(std::uint64_t index) -> number {
  const field& from = field_of(index, field_kind::numeric, numeric_requested);
  return number_of<Precision>(from, record(), rows_.order());
}

template <class Precision>
void basic_ovtable<Precision>::set_native_number(std::uint64_t index, number value) {
  const field& to = field_of(index, field_kind::numeric, string_expected);
  std::byte* words = record();
  if (!to.is_implicit()) put_native_number(to, words, value);
}

template <class Precision>
void basic_ovtable<Precision>::put_native_number(const field& to, std::byte* words, number value) {
  // Stored as given also in a file of another byte order; `setValue` is the road that rearranges.
  store_number<Precision>(place_of(to.atoms.front(), words, Precision::word_bytes), value,
                          byte_order::native);
  rows_.mark_changed(words);
}

template <class Precision>
float basic_ovtable<Precision>::getFloat(std::uint64_t index) {
  if constexpr (Precision::is_double) {
    field_of(index, field_kind::numeric, numeric_requested);
    return table::getFloat(index);
  } else {
    return native_number(index);
  }
}

template <class Precision>
double basic_ovtable<Precision>::getDouble(std::uint64_t index) {
  if constexpr (Precision::is_double) {
    return native_number(index);
  } else {
    field_of(index, field_kind::numeric, numeric_requested);
    return table::getDouble(index);
  }
}

template <class Precision>
void basic_ovtable<Precision>::flushCurrentPage() {
  try {
    rows_.flush_records();
  } catch (const file_error&) {
    fail_told(cannot_cache);
  }
}

template <class Precision>
void basic_ovtable<Precision>::setDouble(std::uint64_t index, double value) {
  if constexpr (Precision::is_double) {
    set_native_number(index, value);
  } else {
    const field& to = field_of(index, field_kind::numeric, string_expected);
    std::byte* words = record();
    if (to.is_implicit()) return;
    put_native_number(to, words, to_float(value));
  }
}

template <class Precision>
void basic_ovtable<Precision>::setFloat(std::uint64_t index, float value) {
  if constexpr (Precision::is_double) {
    table::setFloat(index, value);
  } else {
    set_native_number(index, value);
  }
}

template <class Precision>
void basic_ovtable<Precision>::setValue(std::uint64_t index, const VARIANT& value) {
  const field& to = rows_.fields().at(index);
  std::byte* words = record();
  if (!to.has_stored_words()) return;
  if (to.kind == field_kind::alphanumeric) {
    put_text<Precision>(to, words, ansi_from_wide(to_text(value)));
  } else {
    store_number<Precision>(place_of(to.atoms.front(), words, Precision::word_bytes),
                            valid_number<number>(value), rows_.order());
  }
  rows_.mark_changed(words);
}

template <class Precision>
void basic_ovtable<Precision>::setValueByName(const wide& name, const VARIANT& value) {
  setValue(getFieldIndex(name), value);
}

template class basic_ovtable<single_precision>;
template class basic_ovtable<double_precision>;

}  // namespace ovf
