#include "platform/module.h"

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

// The only thing to do when the module is loaded; nothing of ours cares about threads.
extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void*) {
  if (reason == DLL_PROCESS_ATTACH) {
    ovf::module_handle = module;
    DisableThreadLibraryCalls(module);
  }
  return TRUE;
}
