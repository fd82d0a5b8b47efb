#include "filter/filter_module.h"

#include <windows.h>

#include <stdexcept>
#include <string>

#include "ovfile/filter.h"

namespace ovtest {

namespace {

void* find_entry(HMODULE module, const char* name) {
  const FARPROC found = module != nullptr ? GetProcAddress(module, name) : nullptr;
  if (found == nullptr) throw std::runtime_error(std::string("not found: ") + name);
  return reinterpret_cast<void*>(found);
}

}  // namespace

void* find_filter_entry(const char* name) {
  static const HMODULE module = LoadLibraryA(OVFILTER_PATH);
  return find_entry(module, name);
}

void* find_library_entry(const char* name) {
  static const HMODULE module = LoadLibraryA(OVFILE_LIBRARY_PATH);
  return find_entry(module, name);
}

// Its class object is made known to this process alone: the registry is everybody's.
std::shared_ptr<void> known_evaluator() {
  CoInitialize(nullptr);
  using get_class_object = HRESULT STDAPICALLTYPE(REFCLSID, REFIID, void**);
  auto& entry = filter_entry<get_class_object>("DllGetClassObject");
  void* found = nullptr;
  DWORD cookie = 0;
  if (FAILED(entry(CLSID_OvFilter, IID_IClassFactory, &found))) throw std::runtime_error("no class object");
  auto* classes = static_cast<IUnknown*>(found);
  const HRESULT status =
      CoRegisterClassObject(CLSID_OvFilter, classes, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie);
  if (FAILED(status)) throw std::runtime_error("the class object is refused");
  return {classes, [cookie](IUnknown* held) {
            CoRevokeClassObject(cookie);
            held->Release();
            CoUninitialize();
          }};
}

}  // namespace ovtest
