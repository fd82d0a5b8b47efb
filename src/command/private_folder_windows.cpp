#include <windows.h>
// windows.h goes first.
#include <filesystem>
#include <system_error>

#include "failure.h"
#include "ovfile/smart.h"
#include "private_folder.h"
#include "raw_file.h"

namespace command {

std::string temporary_folder() {
  // It ends in a backslash.
  wchar_t folder[MAX_PATH + 1];
  const DWORD length = GetTempPathW(static_cast<DWORD>(std::size(folder)), folder);
  return ovfile::to_utf8({folder, length < std::size(folder) ? length : 0});
}

private_folder::private_folder(const std::string& purpose) {
  // The user's own temporary folder is nobody else's.
  const std::string stem = temporary_folder() + purpose + "-" + std::to_string(process_number()) + "-";
  for (int number = 0;; ++number) {
    name_ = stem + std::to_string(number);
    if (CreateDirectoryW(ovfile::to_wide(name_).c_str(), nullptr) != 0) return;
    const DWORD code = GetLastError();
    if (code == ERROR_ALREADY_EXISTS) continue;
    throw failure("cannot create a temporary folder " + name_ + ": " +
                  std::system_category().message(static_cast<int>(code)));
  }
}

private_folder::~private_folder() {
  std::error_code ignored;
  std::filesystem::remove_all(std::filesystem::path(ovfile::to_wide(name_)), ignored);
}

}  // namespace command
