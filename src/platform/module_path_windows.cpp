#include "platform/module_path.h"

namespace ovf {

namespace {
const char anchor = 0;  ///< lies in this module and nowhere else
}

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

}  // namespace ovf
