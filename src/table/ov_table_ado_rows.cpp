#include "table/column_values.h"
#include "table/ov_table_ado.h"
#include "table/shared_methods.h"

namespace ovf {
namespace {

constexpr wide_view get_current_row_refused = OLESTR("Error: GetCurrentRow failed, current row is not valid");
constexpr wide_view move_next_refused = OLESTR("Error: MoveNext failed, current row is not valid.");
constexpr wide_view move_previous_refused = OLESTR("Error: MovePrevious failed, current row is not valid.");
constexpr wide_view ado_add_refused = OLESTR("Error: AddRow failed, file is open in read-only mode.");
constexpr wide_view get_refused = OLESTR("Error: GetColumn failed, current row is not valid.");
constexpr wide_view ado_set_refused = OLESTR("Error: SetColumn failed, current row is not valid");
constexpr wide_view setting_in_read_only_table =
    OLESTR("Error: SetColumn failed, file is open in read-only mode.");
constexpr wide_view get_unknown = OLESTR("Error: GettNamedColumn failed, no column with given name.");
constexpr wide_view set_unknown = OLESTR("Error: SetNamedColumn failed, no column with given name.");

}  // namespace

HRESULT COvTableADO::get_EOF(VARIANT_BOOL* pVal) {
  return shared::get_flag(*this, core_, core_.at_end, pVal);
}

HRESULT COvTableADO::get_BOF(VARIANT_BOOL* pVal) {
  return shared::get_flag(*this, core_, core_.at_beginning, pVal);
}

HRESULT COvTableADO::GetRowCount(LONG* pVal) { return shared::get_row_count(*this, core_, pVal); }

HRESULT COvTableADO::GetCurrentRow(LONG* pVal) {
  return shared::get_current_row(*this, core_, get_current_row_refused, pVal);
}

HRESULT COvTableADO::MoveTo(LONG record) { return shared::move_to(*this, core_, record); }

HRESULT COvTableADO::MoveFirst() {
  if (!core_.is_open()) return S_OK;
  return guard(*this, [&] { core_.first_row(); });
}

HRESULT COvTableADO::MoveNext() {
  if (!core_.on_a_row()) return report(*this, move_next_refused);
  if (!core_.is_open() || core_.opened().getRowCount() == 0) return S_OK;
  return guard(*this, [&] { return core_.next_row() == move::on_a_row ? S_OK : S_FALSE; });
}

HRESULT COvTableADO::MoveLast() { return shared::move_to_last(*this, core_); }

HRESULT COvTableADO::MovePrevious() { return shared::move_to_previous(*this, core_, move_previous_refused); }

HRESULT COvTableADO::AddRow() { return shared::add_row(*this, core_, ado_add_refused); }

HRESULT COvTableADO::GetColumn(LONG index, VARIANT* val) {
  return shared::get_column(*this, core_, get_refused, index, val);
}

HRESULT COvTableADO::SetColumn(LONG index, VARIANT val) {
  if (core_.is_read_only()) return report(*this, setting_in_read_only_table);
  return shared::on_a_row(*this, core_, ado_set_refused,
                          [&] { return put_column(core_.opened(), index, val) ? S_FALSE : S_OK; });
}

LONG COvTableADO::column_of(wide_view name) const {
  table& opened = core_.opened();
  const LONG count = int_of(opened.getFieldCount());
  for (LONG column = 1; column <= count; ++column) {
    if (opened.getFieldName(field_index(column)) == name) return column;
  }
  return 0;
}

HRESULT COvTableADO::GetNamedColumn(BSTR bsName, VARIANT* val) {
  if (val == nullptr) return E_POINTER;
  VariantInit(val);
  return guard(*this, [&]() -> HRESULT {
    const LONG column = column_of(view_of(bsName));
    return column == 0 ? report(*this, get_unknown) : GetColumn(column, val);
  });
}

HRESULT COvTableADO::SetNamedColumn(BSTR bsName, VARIANT val) {
  return guard(*this, [&]() -> HRESULT {
    const LONG column = column_of(view_of(bsName));
    return column == 0 ? report(*this, set_unknown) : SetColumn(column, val);
  });
}

}  // namespace ovf
