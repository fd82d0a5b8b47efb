#include "schema/ov_schema.h"
#include "storage/file_error.h"
#include "storage/special_values.h"

namespace ovf {

HRESULT COvSchema::get_ReadOnly(VARIANT_BOOL* pVal) {
  if (pVal == nullptr) return E_POINTER;
  *pVal = read_only_ ? 1 : 0;  // hosts have always been given 1 here
  return S_OK;
}

HRESULT COvSchema::put_ReadOnly(VARIANT_BOOL newVal) {
  if (read_only_) return E_FAIL;
  read_only_ = newVal != 0;
  return S_OK;
}

HRESULT COvSchema::get_FieldCount(LONG* pVal) {
  if (pVal == nullptr) return E_POINTER;
  *pVal = 0;
  return guard(*this, [&] { *pVal = long_of(fields_.count()); });
}

HRESULT COvSchema::put_FieldCount(LONG newVal) {
  if (read_only_) return E_FAIL;
  if (newVal > 0) fields_.reserve(static_cast<std::size_t>(newVal));
  return S_OK;
}

HRESULT COvSchema::get_Description(BSTR* pVal) {
  if (pVal == nullptr) return E_POINTER;
  *pVal = nullptr;
  return guard(*this, [&] { *pVal = new_bstr(description_); });
}

HRESULT COvSchema::put_Description(BSTR newVal) {
  return guard(*this, [&] { description_ = view_of(newVal); });
}

HRESULT COvSchema::get_DoublePrecisionFlag(VARIANT_BOOL* pVal) {
  if (pVal == nullptr) return E_POINTER;
  *pVal = is_double() ? VARIANT_TRUE : VARIANT_FALSE;
  return S_OK;
}

HRESULT COvSchema::put_DoublePrecisionFlag(LONG newVal) {
  double_precision_ = newVal;
  return S_OK;
}

HRESULT COvSchema::get_DoublePrecision(VARIANT_BOOL* pVal) { return get_DoublePrecisionFlag(pVal); }

HRESULT COvSchema::put_DoublePrecision(VARIANT_BOOL newVal) {
  double_precision_ = newVal != 0 ? 1 : 0;
  return S_OK;
}

HRESULT COvSchema::hand_out_special(double value, VARIANT* out) const noexcept {
  if (out == nullptr) return E_POINTER;
  *out = VARIANT{};
  out->vt = VT_R8;
  out->dblVal = is_double() ? value : in_single(value);
  return S_OK;
}

HRESULT COvSchema::get_SpecialValueAbsent(VARIANT* pVal) { return hand_out_special(absent_value, pVal); }

HRESULT COvSchema::get_SpecialValueBottom(VARIANT* pVal) { return hand_out_special(absent_value, pVal); }

HRESULT COvSchema::get_SpecialValueTop(VARIANT* pVal) { return hand_out_special(top_value, pVal); }

HRESULT COvSchema::get_SpecialValueTrace(VARIANT* pVal) { return hand_out_special(trace_value, pVal); }

void COvSchema::begin_filling() noexcept {
  fields_.clear();
  read_only_ = false;
}

}  // namespace ovf
