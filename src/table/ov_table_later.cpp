// Methods whose machinery is not there yet.
#include "table/ov_table.h"

namespace ovf {
namespace {

template <class Out>
HRESULT not_yet(Out* out) noexcept {
  if (out == nullptr) return E_POINTER;
  *out = Out{};
  return E_NOTIMPL;
}

}  // namespace

HRESULT COvTable::SetFilteredIn(LONG) { return E_NOTIMPL; }

HRESULT COvTable::SetFilteredOut(LONG) { return E_NOTIMPL; }

HRESULT COvTable::IsFilteredIn(LONG, LONG, VARIANT_BOOL* pbVal) { return not_yet(pbVal); }

HRESULT COvTable::IsFilteredOut(LONG, LONG, VARIANT_BOOL* pbVal) { return not_yet(pbVal); }

HRESULT COvTable::get_FilterString(LONG, BSTR* pVal) { return not_yet(pVal); }

HRESULT COvTable::put_FilterString(LONG, BSTR) { return E_NOTIMPL; }

HRESULT COvTable::GetColumnMin(LONG, double* pVal) { return not_yet(pVal); }

HRESULT COvTable::GetColumnMax(LONG, double* pVal) { return not_yet(pVal); }

HRESULT COvTable::Sort(LONG, VARIANT_BOOL) { return E_NOTIMPL; }

HRESULT COvTable::Repair(IOvSchema*) { return E_NOTIMPL; }

HRESULT COvTable::GetLooseSignature(BSTR* pVal) { return not_yet(pVal); }

HRESULT COvTable::GetTightSignature(BSTR* pVal) { return not_yet(pVal); }

HRESULT COvTable::GetSignature(VARIANT_BOOL, VARIANT_BOOL, VARIANT_BOOL, LONG, BSTR* pVal) {
  return not_yet(pVal);
}

HRESULT COvTable::SetColumnDefaultFloat(LONG, float) { return E_NOTIMPL; }

HRESULT COvTable::SetColumnDefaultDouble(LONG, double) { return E_NOTIMPL; }

HRESULT COvTable::SetColumnName(LONG, BSTR) { return E_NOTIMPL; }

HRESULT COvTable::SetColumnDefaultString(LONG, BSTR) { return E_NOTIMPL; }

HRESULT COvTable::AddImplicitNumericColumnFloat(BSTR, float) { return E_NOTIMPL; }

HRESULT COvTable::AddImplicitNumericColumnDouble(BSTR, double) { return E_NOTIMPL; }

HRESULT COvTable::AddImplicitStringColumn(BSTR, LONG, BSTR) { return E_NOTIMPL; }

HRESULT COvTable::Rebuild(IOvSchema*, LONG, const LONG*, LONG, const LONG*) { return E_NOTIMPL; }

}  // namespace ovf
