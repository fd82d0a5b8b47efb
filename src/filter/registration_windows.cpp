#include "filter/characters.h"
#include "filter/registration.h"
#include "ovfile/filter.h"
// Self-registration's statuses.
#include <olectl.h>

#include <new>

namespace ovf::filter {

namespace {

const char anchor = 0;  ///< lies in this module and nowhere else

/// Empty when the system cannot tell.
wide module_path() {
  HMODULE module = nullptr;
  const DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  if (GetModuleHandleExW(flags, reinterpret_cast<const wchar_t*>(&anchor), &module) == 0) return {};
  wide path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
    if (length == 0) return {};
    if (length < path.size()) return path.substr(0, length);
    path.resize(path.size() * 2);
  }
}

wide class_key() {
  wchar_t id[40] = L"";
  StringFromGUID2(CLSID_OvFilter, id, 40);
  return wide(L"CLSID\\").append(id);
}

bool set_text(const wide& key, const wchar_t* name, const wide& text) {
  HKEY opened = nullptr;
  if (RegCreateKeyExW(HKEY_CLASSES_ROOT, key.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_WRITE, nullptr,
                      &opened, nullptr) != ERROR_SUCCESS) {
    return false;
  }
  const auto bytes = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
  const LSTATUS status =
      RegSetValueExW(opened, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()), bytes);
  RegCloseKey(opened);
  return status == ERROR_SUCCESS;
}

template <class Body>
HRESULT attempted(Body&& body) noexcept {
  try {
    return body() ? S_OK : SELFREG_E_CLASS;
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace

HRESULT register_class() noexcept {
  return attempted([] {
    const wide path = module_path();
    const wide key = class_key();
    const wide server = key + L"\\InprocServer32";
    return !path.empty() && set_text(key, nullptr, L"OvFile filter evaluator") &&
           set_text(server, nullptr, path) && set_text(server, L"ThreadingModel", L"Both");
  });
}

HRESULT unregister_class() noexcept {
  return attempted([] {
    const LSTATUS status = RegDeleteTreeW(HKEY_CLASSES_ROOT, class_key().c_str());
    return status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND;
  });
}

}  // namespace ovf::filter
