#include "platform/caught.h"
#include "platform/type_library.h"

#include <atomic>
#include <new>

#include "platform/module_path.h"
#include "platform/registry.h"
#include "platform/type_library_windows.h"

namespace ovf {

namespace {

constexpr WORD major_version = 1;
constexpr WORD minor_version = 0;
constexpr SYSKIND own_system = sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32;

/// Read once, kept to the module's end.
std::atomic<ITypeLib*> loaded{nullptr};

/// The module's own, registered or not. Throws std::bad_alloc.
HRESULT load(ITypeLib** library) {
  *library = loaded;
  if (*library != nullptr) return S_OK;
  const HRESULT status = LoadTypeLibEx(module_path().c_str(), REGKIND_NONE, library);
  if (FAILED(status)) return status;
  ITypeLib* earlier = nullptr;
  if (!loaded.compare_exchange_strong(earlier, *library)) {
    // Another thread was faster.
    (*library)->Release();
    *library = earlier;
  }
  return S_OK;
}

bool is_registered() {
  wchar_t id[40] = L"";
  StringFromGUID2(LIBID_OvFileLib, id, 40);
  return registry_key_exists({registry_root::classes, wide(L"TypeLib\\").append(id).append(L"\\1.0")});
}

}  // namespace

bool has_type_library() noexcept { return true; }

HRESULT find_type_info(REFGUID id, ITypeInfo** info) noexcept {
  if (info == nullptr) return E_POINTER;
  *info = nullptr;
  return caught([&] {
    ITypeLib* library = nullptr;
    const HRESULT status = load(&library);
    return FAILED(status) ? status : library->GetTypeInfoOfGuid(id, info);
  });
}

HRESULT register_type_library() noexcept {
  return caught([] {
    ITypeLib* library = nullptr;
    const HRESULT status = load(&library);
    wide path = module_path();
    return FAILED(status) ? status : RegisterTypeLib(library, path.data(), nullptr);
  });
}

HRESULT unregister_type_library() noexcept {
  return caught([] {
    const HRESULT status =
        UnRegisterTypeLib(LIBID_OvFileLib, major_version, minor_version, LOCALE_NEUTRAL, own_system);
    return FAILED(status) && !is_registered() ? S_OK : status;
  });
}

void release_type_library() noexcept {
  if (ITypeLib* library = loaded.exchange(nullptr)) library->Release();
}

}  // namespace ovf
