#include <windows.h>
// windows.h goes first.
#include <memory>

#include "folder_names.h"
#include "ovfile/smart.h"

namespace command {

std::vector<std::string> names_in_folder(const std::string& folder) {
  struct closer {
    void operator()(HANDLE search) const noexcept { FindClose(search); }
  };
  std::vector<std::string> names;
  WIN32_FIND_DATAW found{};
  const HANDLE search = FindFirstFileW(ovfile::to_wide(folder + "\\*").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return names;
  const std::unique_ptr<void, closer> opened(search);
  do {
    names.push_back(ovfile::to_utf8(found.cFileName));
  } while (FindNextFileW(search, &found) != 0);
  return names;
}

}  // namespace command
