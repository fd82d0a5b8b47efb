#include <windows.h>
// windows.h goes first.
#include <objbase.h>

#include <string>

#include "evaluator.h"
#include "loaded_library.h"

namespace command {
namespace {

constexpr const wchar_t* module_name = L"OvFilter.dll";

/// The module that lies beside the program, by its whole path; empty when the system cannot tell.
std::wstring module_beside_program() {
  const std::string folder = program_folder();
  return folder.empty() ? std::wstring() : ovfile::to_wide(folder) + L"\\" + module_name;
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
