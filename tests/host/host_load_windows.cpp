#include <stdexcept>

#include "host/host_load.h"

namespace ovtest {
namespace {

HMODULE module_of(void* handle) { return static_cast<HMODULE>(handle); }

template <class Struct>
const Struct* at(HMODULE module, DWORD offset) {
  return reinterpret_cast<const Struct*>(reinterpret_cast<const char*>(module) + offset);
}

FARPROC find_in(const char* library, const char* name) {
  return GetProcAddress(GetModuleHandleA(library), name);
}

}  // namespace

loaded_library::loaded_library(const std::string& path) : path_(path), handle_(LoadLibraryA(path.c_str())) {
  if (handle_ == nullptr) throw std::runtime_error("cannot load " + path);
}

loaded_library::~loaded_library() { FreeLibrary(module_of(handle_)); }

loaded_library::any_function* loaded_library::find(const char* name) const {
  return reinterpret_cast<any_function*>(GetProcAddress(module_of(handle_), name));
}

loaded_library::any_function* loaded_library::find_runtime(const char* name) const {
  const FARPROC automation = find_in("oleaut32.dll", name);
  return reinterpret_cast<any_function*>(automation != nullptr ? automation : find_in("ole32.dll", name));
}

std::set<std::string> loaded_library::exported_names() const {
  const HMODULE module = module_of(handle_);
  const auto* start = at<IMAGE_DOS_HEADER>(module, 0);
  const auto* headers = at<IMAGE_NT_HEADERS>(module, static_cast<DWORD>(start->e_lfanew));
  const auto& entry = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
  const auto* exports = at<IMAGE_EXPORT_DIRECTORY>(module, entry.VirtualAddress);
  const auto* names = at<DWORD>(module, exports->AddressOfNames);
  std::set<std::string> found;
  for (DWORD i = 0; i < exports->NumberOfNames; ++i) found.insert(at<char>(module, names[i]));
  return found;
}

std::set<std::string> loaded_library::contract() {
  return {"DllGetClassObject", "DllCanUnloadNow", "DllRegisterServer", "DllUnregisterServer"};
}

}  // namespace ovtest
