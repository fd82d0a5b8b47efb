#include <type_traits>

#include "platform/variant_values_linux.h"

namespace ovf::conversion {

namespace {

template <class Integer>
HRESULT whole(Integer number, source_value& value) {
  value.what = std::is_signed_v<Integer> ? kind::signed_whole : kind::unsigned_whole;
  value.bytes = sizeof number;
  // One-byte integers are numbers here, not characters: their sign counts.
  value.number = static_cast<std::int64_t>(number);  // NOLINT(bugprone-signed-char-misuse)
  return S_OK;
}

HRESULT real(kind what, double number, source_value& value) {
  value.what = what;
  value.real = number;
  return S_OK;
}

}  // namespace

HRESULT read_source(const VARIANT& source, source_value& value) noexcept {
  switch (source.vt) {
    case VT_EMPTY:
      return S_OK;
    case VT_I1:
      return whole(static_cast<std::int8_t>(source.bVal), value);
    case VT_I2:
      return whole(source.iVal, value);
    case VT_I4:
    case VT_INT:
      return whole(source.lVal, value);
    case VT_I8:
      return whole(source.llVal, value);
    case VT_UI1:
      return whole(source.bVal, value);
    case VT_UI2:
      return whole(source.uiVal, value);
    case VT_UI4:
    case VT_UINT:
      return whole(source.ulVal, value);
    case VT_UI8:
      return whole(source.ullVal, value);
    case VT_R4:
      return real(kind::single, static_cast<double>(source.fltVal), value);
    case VT_R8:
      return real(kind::real, source.dblVal, value);
    case VT_DATE:
      return real(kind::date, source.date, value);
    case VT_BOOL:
      value = {.what = kind::boolean, .number = source.boolVal};
      return S_OK;
    case VT_CY:
      value = {.what = kind::currency, .number = source.cyVal.int64};
      return S_OK;
    case VT_BSTR:
      value = {.what = kind::text, .text = view_of(source.bstrVal)};
      return S_OK;
    default:
      return DISP_E_TYPEMISMATCH;
  }
}

}  // namespace ovf::conversion
