#include "storage/file_error.h"
#include "table/ov_table.h"

namespace ovf {
namespace {

constexpr wide_view next_refused = OLESTR("GetNextRow failed, current row is not valid");
constexpr wide_view previous_refused = OLESTR("MovePrevious failed, current row is not valid");
constexpr wide_view current_refused = OLESTR("GetCurrentRow failed, current row is not valid");
constexpr wide_view add_refused = OLESTR("AddRow failed, current row is not valid");

HRESULT status_of(move outcome) noexcept { return outcome == move::on_a_row ? S_OK : S_FALSE; }

}  // namespace

HRESULT COvTable::GetFirstRow() {
  if (!core_.is_open()) return S_OK;
  return guard(*this, [&] { return status_of(core_.first_row()); });
}

HRESULT COvTable::GetLastRow() {
  if (!core_.is_open()) return S_OK;
  return guard(*this, [&] { core_.last_row(); });
}

HRESULT COvTable::GetNextRow() {
  if (!core_.on_a_row()) return report(*this, next_refused);
  if (!core_.is_open()) return S_OK;
  return guard(*this, [&] { return status_of(core_.next_row()); });
}

HRESULT COvTable::GetPreviousRow() {
  if (!core_.on_a_row()) return report(*this, previous_refused);
  if (!core_.is_open()) return S_OK;
  return guard(*this, [&] { return core_.previous_row() == move::off_the_end ? S_FALSE : S_OK; });
}

HRESULT COvTable::GetRowAt(LONG lIndex) {
  if (!core_.is_open()) return S_OK;
  HRESULT status = S_OK;
  // A row that cannot be read is reported, and the status stays what it was: hosts rely on it.
  (void)guard(*this, [&] { status = status_of(core_.row_at(lIndex)); });
  return status;
}

HRESULT COvTable::GetCurrentRow(LONG* pVal) {
  if (pVal == nullptr) return E_POINTER;
  *pVal = 0;
  if (!core_.on_a_row()) return report(*this, current_refused);
  return guard(*this, [&] { *pVal = long_of(core_.opened().currentRow()); });
}

HRESULT COvTable::GetRowCount(LONG* pVal) {
  if (pVal == nullptr) return E_POINTER;
  *pVal = 0;
  return guard(*this, [&] { *pVal = long_of(core_.opened().getRowCount()); });
}

HRESULT COvTable::get_EOF(VARIANT_BOOL* pVal) {
  if (pVal == nullptr) return E_POINTER;
  *pVal = 0;
  // True is 1 here, not VARIANT_TRUE: that is what hosts have always got.
  return guard(*this, [&] { *pVal = core_.opened().getRowCount() == 0 || core_.at_end ? 1 : 0; });
}

HRESULT COvTable::get_BOF(VARIANT_BOOL* pVal) {
  if (pVal == nullptr) return E_POINTER;
  *pVal = 0;
  return guard(*this, [&] { *pVal = core_.opened().getRowCount() == 0 || core_.at_beginning ? 1 : 0; });
}

HRESULT COvTable::AddRow() {
  if (core_.is_read_only()) return report(*this, add_refused);
  return guard(*this, [&] { core_.add_row(); });
}

HRESULT COvTable::DeleteRow(LONG) { return E_NOTIMPL; }

HRESULT COvTable::ReduceRowCountTo(LONG) { return E_NOTIMPL; }

HRESULT COvTable::FlushChanges() {
  return guard(*this, [&] { core_.opened().flush(); });
}

}  // namespace ovf
