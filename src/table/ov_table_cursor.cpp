#include "table/ov_table.h"
#include "table/shared_methods.h"

namespace ovf {
namespace {

constexpr wide_view next_refused = OLESTR("GetNextRow failed, current row is not valid");
constexpr wide_view previous_refused = OLESTR("MovePrevious failed, current row is not valid");
constexpr wide_view current_refused = OLESTR("GetCurrentRow failed, current row is not valid");
constexpr wide_view too_many_rows =
    OLESTR("SetRowCount failed, requested row count must not be greater than the current row count");
constexpr wide_view negative_rows = OLESTR("SetRowCount failed, requested row count must be positive or 0");
constexpr wide_view add_refused = OLESTR("AddRow failed, current row is not valid");

HRESULT status_of(move outcome) noexcept { return outcome == move::on_a_row ? S_OK : S_FALSE; }

}  // namespace

HRESULT COvTable::GetFirstRow() {
  if (!core_.is_open()) return S_OK;
  return guard(*this, [&] { return status_of(core_.first_row()); });
}

HRESULT COvTable::GetLastRow() { return shared::move_to_last(*this, core_); }

HRESULT COvTable::GetNextRow() {
  if (!core_.on_a_row()) return report(*this, next_refused);
  if (!core_.is_open()) return S_OK;
  return guard(*this, [&] { return status_of(core_.next_row()); });
}

HRESULT COvTable::GetPreviousRow() { return shared::move_to_previous(*this, core_, previous_refused); }

HRESULT COvTable::GetRowAt(LONG lIndex) { return shared::move_to(*this, core_, lIndex); }

HRESULT COvTable::GetCurrentRow(LONG* pVal) {
  return shared::get_current_row(*this, core_, current_refused, pVal);
}

HRESULT COvTable::GetRowCount(LONG* pVal) { return shared::get_row_count(*this, core_, pVal); }

HRESULT COvTable::get_EOF(VARIANT_BOOL* pVal) { return shared::get_flag(*this, core_, core_.at_end, pVal); }

HRESULT COvTable::get_BOF(VARIANT_BOOL* pVal) {
  return shared::get_flag(*this, core_, core_.at_beginning, pVal);
}

HRESULT COvTable::AddRow() { return shared::add_row(*this, core_, add_refused); }

HRESULT COvTable::DeleteRow(LONG) { return E_NOTIMPL; }

HRESULT COvTable::ReduceRowCountTo(LONG lRows) {
  return guard(*this, [&]() -> HRESULT {
    table& opened = core_.opened();
    const LONG rows = long_of(opened.getRowCount());
    if (lRows > rows) return report(*this, too_many_rows);
    if (lRows < 0) return report(*this, negative_rows);
    opened.onSetRowCount(static_cast<std::uint64_t>(lRows));
    return S_OK;
  });
}

HRESULT COvTable::FlushChanges() {
  return guard(*this, [&] { core_.opened().flush(); });
}

}  // namespace ovf
