// Variants: who owns what, copies, and by-reference values.
#include "platform/variant_linux.h"
#include "ovfile/component.h"

namespace ovf {

namespace {

bool is_scalar(VARTYPE type) {
  switch (type) {
    case VT_EMPTY:
    case VT_NULL:
    case VT_I1:
    case VT_I2:
    case VT_I4:
    case VT_I8:
    case VT_UI1:
    case VT_UI2:
    case VT_UI4:
    case VT_UI8:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
    case VT_BOOL:
    case VT_ERROR:
      return true;
    default:
      return false;
  }
}

bool is_owning(VARTYPE type) { return type == VT_BSTR || type == VT_DISPATCH || type == VT_UNKNOWN; }

bool is_reference(VARTYPE type) {
  if ((type & VT_BYREF) == 0) return false;
  const auto target = static_cast<VARTYPE>(type & ~VT_BYREF);
  if (target == VT_EMPTY || target == VT_NULL) return false;
  return target == VT_VARIANT || is_scalar(target) || is_owning(target);
}

/// The value that a by-reference variant stands for, shared with it.
HRESULT read_reference(const VARIANT& reference, VARIANT& value) {
  value.vt = static_cast<VARTYPE>(reference.vt & ~VT_BYREF);
  std::size_t size = sizeof value.llVal;
  switch (value.vt) {
    case VT_I1:
    case VT_UI1:
      size = 1;
      break;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      size = 2;
      break;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_ERROR:
      size = 4;
      break;
    default:
      break;
  }
  std::memcpy(&value.llVal, reference.byref, size);
  return S_OK;
}

HRESULT copy_text(const VARIANT& source, VARIANT& copy) {
  if (source.bstrVal == nullptr) return S_OK;
  copy.bstrVal =
      SysAllocStringByteLen(reinterpret_cast<const char*>(source.bstrVal), SysStringByteLen(source.bstrVal));
  return copy.bstrVal == nullptr ? E_OUTOFMEMORY : S_OK;
}

/// A copy that owns what it holds.
HRESULT copy_of(const VARIANT& source, VARIANT& copy) {
  copy = source;
  if (source.vt == VT_BSTR) return copy_text(source, copy);
  if (source.vt == VT_UNKNOWN && source.punkVal != nullptr) source.punkVal->AddRef();
  if (source.vt == VT_DISPATCH && source.pdispVal != nullptr) source.pdispVal->AddRef();
  return is_valid_variant_type(source.vt) ? S_OK : DISP_E_BADVARTYPE;
}

}  // namespace

bool is_valid_variant_type(VARTYPE type) noexcept {
  return is_scalar(type) || is_owning(type) || is_reference(type);
}

HRESULT resolve_variant(const VARIANT& source, VARIANT& value) noexcept {
  VariantInit(&value);
  const VARIANT* from = &source;
  if (from->vt == (VT_BYREF | VT_VARIANT)) {
    from = source.pvarVal;
    // A chain of references is refused: it could be a ring.
    if (from == nullptr || from->vt == (VT_BYREF | VT_VARIANT)) return E_INVALIDARG;
  }
  if (!is_valid_variant_type(from->vt)) return DISP_E_BADVARTYPE;
  if ((from->vt & VT_BYREF) != 0) {
    return from->byref == nullptr ? E_INVALIDARG : read_reference(*from, value);
  }
  value = *from;
  return S_OK;
}

HRESULT replace_variant(VARIANT& place, const VARIANT& value) noexcept {
  VARIANT fresh = value;
  const HRESULT status = VariantClear(&place);
  if (FAILED(status)) {
    VariantClear(&fresh);
    return status;
  }
  place = fresh;
  return S_OK;
}

}  // namespace ovf

void VariantInit(VARIANTARG* pvarg) {
  if (pvarg != nullptr) *pvarg = VARIANT{};
}

HRESULT VariantClear(VARIANTARG* pvarg) {
  if (pvarg == nullptr) return E_INVALIDARG;
  if (!ovf::is_valid_variant_type(pvarg->vt)) return DISP_E_BADVARTYPE;
  // Emptied first: letting an object go may lead back to this variant.
  const VARIANT old = *pvarg;
  VariantInit(pvarg);
  if (old.vt == VT_BSTR) SysFreeString(old.bstrVal);
  if (old.vt == VT_UNKNOWN && old.punkVal != nullptr) old.punkVal->Release();
  if (old.vt == VT_DISPATCH && old.pdispVal != nullptr) old.pdispVal->Release();
  return S_OK;
}

HRESULT VariantCopy(VARIANTARG* pvargDest, const VARIANTARG* pvargSrc) {
  if (pvargDest == nullptr || pvargSrc == nullptr) return E_INVALIDARG;
  if (pvargDest == pvargSrc) return S_OK;
  VARIANT copy{};
  const HRESULT status = ovf::copy_of(*pvargSrc, copy);
  return FAILED(status) ? status : ovf::replace_variant(*pvargDest, copy);
}

HRESULT VariantCopyInd(VARIANT* pvarDest, const VARIANTARG* pvargSrc) {
  if (pvarDest == nullptr || pvargSrc == nullptr) return E_INVALIDARG;
  if ((pvargSrc->vt & VT_BYREF) == 0) return VariantCopy(pvarDest, pvargSrc);
  VARIANT value{};
  VARIANT copy{};
  HRESULT status = ovf::resolve_variant(*pvargSrc, value);
  if (SUCCEEDED(status)) status = ovf::copy_of(value, copy);
  return FAILED(status) ? status : ovf::replace_variant(*pvarDest, copy);
}
