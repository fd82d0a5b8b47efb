// The change of type as a whole: references and default properties are followed, then the value itself
// is changed (platform/variant_values_linux.h), and only then the target variant gives up what it held.
#include <new>

#include "platform/variant.h"
#include "platform/variant_linux.h"
#include "platform/variant_values_linux.h"

namespace ovf {

namespace {

using namespace conversion;

constexpr USHORT no_value_property = 1;
/// An object whose value is an object whose value …: more is taken for a ring.
constexpr int value_property_depth = 16;

/// A plain value as another plain type.
HRESULT change_value(const VARIANT& source, USHORT flags, VARTYPE type, VARIANT& result) {
  source_value value;
  const HRESULT status = read_source(source, value);
  if (FAILED(status)) return status;
  switch (type) {
    case VT_EMPTY:
    case VT_NULL:
      return S_OK;
    case VT_I1: {
      std::int8_t number = 0;
      const HRESULT done = to_integer(value, number);
      result.bVal = static_cast<std::uint8_t>(number);
      return done;
    }
    case VT_I2:
      return to_integer(value, result.iVal);
    case VT_I4:
    case VT_INT:
      return to_integer(value, result.lVal);
    case VT_I8:
      return to_integer(value, result.llVal);
    case VT_UI1:
      return to_integer(value, result.bVal);
    case VT_UI2:
      return to_integer(value, result.uiVal);
    case VT_UI4:
    case VT_UINT:
      return to_integer(value, result.ulVal);
    case VT_UI8:
      return to_integer(value, result.ullVal);
    case VT_R4:
      return to_float(value, result.fltVal);
    case VT_R8:
      return to_double(value, result.dblVal);
    case VT_CY:
      return to_currency(value, result.cyVal.int64);
    case VT_DATE:
      return to_date(value, result.date);
    case VT_BOOL:
      return to_boolean(value, result.boolVal);
    case VT_BSTR:
      return to_text(value, flags, result.bstrVal);
    default:
      return DISP_E_TYPEMISMATCH;
  }
}

HRESULT change_to_object(const VARIANT& source, VARTYPE type, VARIANT& result) {
  IUnknown* object = source.vt == VT_DISPATCH ? source.pdispVal : source.punkVal;
  if (object == nullptr) return S_OK;
  void* found = nullptr;
  const HRESULT status = object->QueryInterface(type == VT_DISPATCH ? IID_IDispatch : IID_IUnknown, &found);
  if (FAILED(status)) return status;
  if (type == VT_DISPATCH) {
    result.pdispVal = static_cast<IDispatch*>(found);
  } else {
    result.punkVal = static_cast<IUnknown*>(found);
  }
  return S_OK;
}

HRESULT change(const VARIANT& source, USHORT flags, VARTYPE type, VARIANT& result, int depth);

/// An object stands for its default property.
HRESULT change_default_property(IDispatch* object, USHORT flags, VARTYPE type, VARIANT& result, int depth) {
  if (object == nullptr || (flags & no_value_property) != 0 || depth == 0) return DISP_E_TYPEMISMATCH;
  DISPPARAMS none{};
  variant property;
  const HRESULT status =
      object->Invoke(0, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, property.out(), nullptr, nullptr);
  if (FAILED(status)) return DISP_E_TYPEMISMATCH;
  VARIANT value{};
  const HRESULT resolved = resolve_variant(property, value);
  return FAILED(resolved) ? resolved : change(value, flags, type, result, depth - 1);
}

/// `source` is resolved; `result` is empty and, on success, owns what it holds.
HRESULT change(const VARIANT& source, USHORT flags, VARTYPE type, VARIANT& result, int depth) {
  if (source.vt == type) return VariantCopy(&result, &source);
  const bool to_object = type == VT_DISPATCH || type == VT_UNKNOWN;
  const bool from_object = source.vt == VT_DISPATCH || source.vt == VT_UNKNOWN;
  VARIANT fresh{};
  fresh.vt = type;
  HRESULT status = S_OK;
  if (from_object && to_object) {
    status = change_to_object(source, type, fresh);
  } else if (from_object && (type == VT_EMPTY || type == VT_NULL)) {
    status = S_OK;
  } else if (source.vt == VT_DISPATCH) {
    return change_default_property(source.pdispVal, flags, type, result, depth);
  } else {
    status = change_value(source, flags, type, fresh);
  }
  if (SUCCEEDED(status)) result = fresh;
  return status;
}

/// The changes that happen for every cell of a table, without a detour.
bool change_at_once(VARIANT& dest, const VARIANT& source, VARTYPE type) {
  const bool dest_is_plain = dest.vt <= VT_DATE;
  if (!dest_is_plain || type != VT_R8 || (source.vt != VT_R8 && source.vt != VT_R4)) return false;
  const double number = source.vt == VT_R8 ? source.dblVal : static_cast<double>(source.fltVal);
  dest.vt = VT_R8;
  dest.dblVal = number;
  return true;
}

HRESULT change_checked(VARIANT& dest, const VARIANT& source, USHORT flags, VARTYPE type) {
  if (type == VT_VARIANT) return DISP_E_TYPEMISMATCH;
  if ((type & VT_BYREF) != 0 || !is_valid_variant_type(type)) return DISP_E_BADVARTYPE;
  VARIANT value{};
  VARIANT result{};
  HRESULT status = resolve_variant(source, value);
  if (SUCCEEDED(status)) status = change(value, flags, type, result, value_property_depth);
  return FAILED(status) ? status : replace_variant(dest, result);
}

}  // namespace

HRESULT change_type(VARIANT& dest, const VARIANT& source, VARTYPE type) noexcept {
  return VariantChangeTypeEx(&dest, &source, 0, 0, type);
}

}  // namespace ovf

HRESULT VariantChangeType(VARIANTARG* pvargDest, const VARIANTARG* pvarSrc, USHORT flags, VARTYPE vt) {
  return VariantChangeTypeEx(pvargDest, pvarSrc, 0, flags, vt);
}

HRESULT VariantChangeTypeEx(VARIANTARG* pvargDest, const VARIANTARG* pvarSrc, LCID, USHORT flags,
                            VARTYPE vt) {
  if (pvargDest == nullptr || pvarSrc == nullptr) return E_INVALIDARG;
  try {
    if (ovf::change_at_once(*pvargDest, *pvarSrc, vt)) return S_OK;
    return ovf::change_checked(*pvargDest, *pvarSrc, flags, vt);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_FAIL;
  }
}
