#include <windows.h>
// windows.h goes first.
#include <filesystem>

#include "loaded_library.h"
#include "ovfile/smart.h"
#include "system_reason.h"

namespace command {
namespace {

/// While one lives, a library that is damaged or lacks another one is a failure, not a box on the screen.
class silent_errors {
 public:
  silent_errors() { SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &before_); }
  ~silent_errors() { SetThreadErrorMode(before_, nullptr); }
  silent_errors(const silent_errors&) = delete;
  silent_errors& operator=(const silent_errors&) = delete;

 private:
  DWORD before_ = 0;
};

/// The system's words for a file that is damaged have a gap for its name.
std::string load_reason(DWORD code) {
  return code == ERROR_BAD_EXE_FORMAT ? "it is no library for this program, or damaged" : system_reason(code);
}

}  // namespace

void* load_library(const std::string& path, binding, std::string& reason) {
  const silent_errors silence;
  std::error_code error;
  std::filesystem::path whole = std::filesystem::absolute(ovfile::to_wide(path), error).make_preferred();
  // A name without a suffix would be taken for that of another file, which ends in .dll.
  if (!whole.has_extension()) whole += L'.';
  // What it needs itself may lie beside it, but never in the current folder.
  const HMODULE library = LoadLibraryExW(whole.c_str(), nullptr,
                                         LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
  if (library == nullptr) reason = load_reason(GetLastError());
  return library;
}

void* find_function(void* library, const char* name) noexcept {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

std::string program_folder() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (length == 0) return {};
    if (length < path.size()) {
      path.resize(length);
      return ovfile::to_utf8(std::filesystem::path(path).parent_path().native());
    }
    path.resize(path.size() * 2);
  }
}

}  // namespace command
