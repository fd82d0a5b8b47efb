#include <array>

#include "table/column_values.h"
#include "table/ov_table.h"
#include "table/ov_table_messages.h"
#include "table/shared_methods.h"

namespace ovf {
namespace {

constexpr wide_view get_double_refused = OLESTR("GetColumnAsDouble failed, current row is not valid");
constexpr wide_view get_float_refused = OLESTR("GetColumnAsFloat failed, current row is not valid");
constexpr wide_view get_string_refused = OLESTR("GetColumnAsString failed, current row is not valid");
constexpr wide_view set_refused = OLESTR("SetColumn failed, current row is not valid");
constexpr wide_view read_record_refused = OLESTR("ReadOVRecord failed, current row is not valid");
constexpr wide_view write_record_refused = OLESTR("WriteOVRecord failed, current row is not valid");

}  // namespace

template <class Body>
HRESULT COvTable::on_a_row(wide_view refusal, Body body) {
  return shared::on_a_row(*this, core_, refusal, body);
}

template <class Body>
HRESULT COvTable::changing_a_row(Body body) {
  if (core_.is_read_only()) return report(*this, message_id::read_only_file);
  return on_a_row(set_refused, [&] { return body() ? S_FALSE : S_OK; });
}

void COvTable::take_stored(LONG column, const VARIANT& value) {
  const variant stored = as_stored(core_.opened(), value);
  if (stored.type() == VT_BSTR) return;
  if (core_.opened().getFieldType(field_index(column)) != field_kind::numeric) return;
  variant number;
  if (SUCCEEDED(change_type(*number.out(), stored, VT_R8))) ranges_.take(column, number.get().dblVal);
}

HRESULT COvTable::GetColumnAsDouble(LONG lIndex, double* pVal) {
  if (pVal == nullptr) return E_POINTER;
  *pVal = 0;
  return on_a_row(get_double_refused, [&] { *pVal = column_as_double(core_.opened(), lIndex); });
}

HRESULT COvTable::GetColumnAsFloat(LONG lIndex, float* pVal) {
  if (pVal == nullptr) return E_POINTER;
  *pVal = 0;
  return on_a_row(get_float_refused, [&] { *pVal = core_.opened().getFloat(field_index(lIndex)); });
}

HRESULT COvTable::GetColumnAsString(LONG lIndex, BSTR* pVal) {
  if (pVal == nullptr) return E_POINTER;
  *pVal = nullptr;
  return on_a_row(get_string_refused,
                  [&] { *pVal = bstr_or_null(core_.opened().getString(field_index(lIndex))); });
}

HRESULT COvTable::GetColumn(LONG lIndex, VARIANT* pVal) {
  return shared::get_column(*this, core_, get_column_refused, lIndex, pVal);
}

HRESULT COvTable::SetColumn(LONG lIndex, VARIANT newVal) {
  return changing_a_row([&] {
    const bool cut = put_column(core_.opened(), lIndex, newVal);
    if (ranges_.are_known()) take_stored(lIndex, newVal);
    return cut;
  });
}

HRESULT COvTable::SetColumnDouble(LONG lIndex, double newVal) {
  return changing_a_row([&] {
    core_.opened().setDouble(field_index(lIndex), newVal);
    ranges_.take(lIndex, newVal);
    return false;
  });
}

HRESULT COvTable::SetColumnFloat(LONG lIndex, float newVal) {
  return changing_a_row([&] {
    core_.opened().setFloat(field_index(lIndex), newVal);
    ranges_.take(lIndex, static_cast<double>(newVal));
    return false;
  });
}

HRESULT COvTable::SetColumnString(LONG lIndex, BSTR newVal) {
  return changing_a_row([&] { return put_text_column(core_.opened(), lIndex, view_of(newVal)); });
}

HRESULT COvTable::read_record(LONG* buffer) {
  if (buffer == nullptr) return E_POINTER;
  return on_a_row(read_record_refused, [&] { core_.opened().readRecord(0, buffer); });
}

HRESULT COvTable::read_record_into_argument() {
  return on_a_row(read_record_refused, [&] {
    // A record may be longer than an argument: it is read whole where there is room for it.
    std::array<std::byte, double_precision::page_bytes> record;
    core_.opened().readRecord(0, record.data());
  });
}

HRESULT COvTable::WriteOVRecord(LONG* pBuffer) {
  if (pBuffer == nullptr) return E_POINTER;
  return on_a_row(write_record_refused, [&] { core_.opened().writeRecord(0, pBuffer); });
}

}  // namespace ovf
