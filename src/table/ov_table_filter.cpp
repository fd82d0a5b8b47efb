#include "table/ov_table.h"
#include "table/ov_table_messages.h"

namespace ovf {
namespace {

/// Without an evaluator nothing is reported.
template <class Body>
HRESULT guarded(const COvTable& object, Body body) {
  return guard(object, [&]() -> HRESULT {
    try {
      return body();
    } catch (const no_evaluator&) {
      return E_FAIL;
    }
  });
}

}  // namespace

HRESULT COvTable::get_FilterString(LONG, BSTR* pVal) {
  if (pVal == nullptr) return E_POINTER;
  *pVal = nullptr;
  return guarded(*this, [&] {
    *pVal = bstr_or_null(filter_.expression());
    return S_OK;
  });
}

HRESULT COvTable::put_FilterString(LONG, BSTR newVal) {
  return guarded(*this, [&] {
    filter_.set_expression(view_of(newVal));
    return S_OK;
  });
}

HRESULT COvTable::IsFilteredIn(LONG, LONG, VARIANT_BOOL* pbVal) {
  if (pbVal == nullptr) return E_POINTER;
  *pbVal = 0;
  return guarded(*this, [&]() -> HRESULT {
    const bool needs_row = !filter_.expression().empty() && core_.is_open();
    if (needs_row && !core_.on_a_row()) return report(*this, get_column_refused);
    *pbVal = filter_.passes(core_);
    return S_OK;
  });
}

HRESULT COvTable::IsFilteredOut(LONG nMode, LONG row, VARIANT_BOOL* pbVal) {
  if (pbVal == nullptr) return E_POINTER;
  const HRESULT status = IsFilteredIn(nMode, row, pbVal);
  *pbVal = SUCCEEDED(status) && *pbVal == 0 ? 1 : 0;
  return status;
}

HRESULT COvTable::SetFilteredIn(LONG) { return E_NOTIMPL; }

HRESULT COvTable::SetFilteredOut(LONG) { return E_NOTIMPL; }

}  // namespace ovf
