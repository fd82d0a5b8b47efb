#include "platform/variant.h"

#include <new>

#include "base/system_error.h"

namespace ovf {

namespace {

variant changed(const VARIANT& value, VARTYPE type) {
  variant result;
  const HRESULT status = change_type(*result.out(), value, type);
  if (status == E_OUTOFMEMORY) throw std::bad_alloc();
  if (FAILED(status)) throw com_error(status);
  return result;
}

/// Such values are worth no detour: this happens for every cell.
bool is_surely_within_float(double value) noexcept { return value < 1e38 && value > -1e38; }

}  // namespace

com_error::com_error(HRESULT status) : MyExceptionClass(status_message(status)), status_(status) {}

double to_double(const VARIANT& value) {
  if (value.vt == VT_R8) return value.dblVal;
  if (value.vt == VT_R4) return static_cast<double>(value.fltVal);
  return changed(value, VT_R8).get().dblVal;
}

float to_float(const VARIANT& value) {
  if (value.vt == VT_R4) return value.fltVal;
  if (value.vt == VT_R8 && is_surely_within_float(value.dblVal)) return static_cast<float>(value.dblVal);
  return changed(value, VT_R4).get().fltVal;
}

float to_float(double value) {
  return is_surely_within_float(value) ? static_cast<float>(value) : to_float(variant(value));
}

wide to_text(const VARIANT& value) {
  if (value.vt == VT_BSTR) return wide(view_of(value.bstrVal));
  return wide(view_of(changed(value, VT_BSTR).get().bstrVal));
}

variant::variant(double number) noexcept : variant() {
  value_.vt = VT_R8;
  value_.dblVal = number;
}

variant::variant(float number) noexcept : variant() {
  value_.vt = VT_R4;
  value_.fltVal = number;
}

variant::variant(wide_view text) : variant() {
  value_.bstrVal = new_bstr(text);
  value_.vt = VT_BSTR;
}

variant::variant(const VARIANT& other) : variant() {
  // Some headers declare the source as one that might be changed; it never is.
  const HRESULT status = VariantCopyInd(&value_, const_cast<VARIANT*>(&other));
  if (status == E_OUTOFMEMORY) throw std::bad_alloc();
  if (FAILED(status)) throw com_error(status);
}

}  // namespace ovf
