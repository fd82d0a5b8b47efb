#include "platform/type_library.h"

namespace ovf {

bool has_type_library() noexcept { return false; }

HRESULT find_type_info(REFGUID, ITypeInfo** info) noexcept {
  if (info == nullptr) return E_POINTER;
  *info = nullptr;
  return E_NOTIMPL;
}

HRESULT register_type_library() noexcept { return S_OK; }

HRESULT unregister_type_library() noexcept { return S_OK; }

}  // namespace ovf
