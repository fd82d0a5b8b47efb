#include <windows.h>
// windows.h goes first.
#include <objbase.h>

#include <string>

#include "evaluator.h"

namespace command {
namespace {

constexpr const wchar_t* module_name = L"OvFilter.dll";

/// The module that lies beside the program, by its whole path; empty when the system cannot tell.
std::wstring module_beside_program() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (length == 0) return {};
    if (length < path.size()) {
      path.resize(length);
      return path.substr(0, path.find_last_of(L"\\/") + 1) + module_name;
    }
    path.resize(path.size() * 2);
  }
}

bool is_registered() {
  void* factory = nullptr;
  if (FAILED(CoGetClassObject(CLSID_OvFilter, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory, &factory))) {
    return false;
  }
  static_cast<IUnknown*>(factory)->Release();
  return true;
}

/// For this process alone.
void register_module(const std::wstring& path) {
  const HMODULE module = path.empty() ? nullptr : LoadLibraryW(path.c_str());
  if (module == nullptr) return;
  using entry_point = HRESULT(WINAPI*)(REFCLSID, REFIID, void**);
  // By way of a plain pointer: the compilers warn of a cast between types of functions.
  void* const address = reinterpret_cast<void*>(GetProcAddress(module, "DllGetClassObject"));
  const auto get_class_object = reinterpret_cast<entry_point>(address);
  void* factory = nullptr;
  if (get_class_object == nullptr) return;
  if (FAILED(get_class_object(CLSID_OvFilter, IID_IClassFactory, &factory))) return;
  DWORD cookie = 0;
  (void)CoRegisterClassObject(CLSID_OvFilter, static_cast<IUnknown*>(factory), CLSCTX_INPROC_SERVER,
                              REGCLS_MULTIPLEUSE, &cookie);
  static_cast<IUnknown*>(factory)->Release();
}

}  // namespace

void make_evaluator_known() {
  // Each thread has its own list of them.
  thread_local bool known = false;
  if (known) return;
  known = true;
  (void)CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  if (!is_registered()) register_module(module_beside_program());
}

}  // namespace command
