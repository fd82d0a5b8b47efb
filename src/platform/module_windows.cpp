#include "platform/module.h"
#include "platform/type_library_windows.h"

namespace ovf {

namespace {
HINSTANCE module_handle = nullptr;  ///< null, which means the program, where the library is linked into one
constexpr int longest_string = 1024;
}  // namespace

std::optional<wide> string_resource(unsigned number) {
  wchar_t text[longest_string + 1];
  const int length = LoadStringW(module_handle, number, text, longest_string + 1);
  if (length <= 0) return std::nullopt;
  return wide(text, static_cast<std::size_t>(length));
}

}  // namespace ovf

// Nothing of ours cares about threads. At the end of the process the system clears up by itself.
extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void* process_ends) {
  if (reason == DLL_PROCESS_ATTACH) {
    ovf::module_handle = module;
    DisableThreadLibraryCalls(module);
  } else if (reason == DLL_PROCESS_DETACH && process_ends == nullptr) {
    ovf::release_type_library();
  }
  return TRUE;
}
