#include <dirent.h>

#include <memory>

#include "folder_names.h"

namespace command {

std::vector<std::string> names_in_folder(const std::string& folder) {
  struct closer {
    void operator()(DIR* opened) const noexcept { ::closedir(opened); }
  };
  std::vector<std::string> names;
  const std::unique_ptr<DIR, closer> opened(::opendir(folder.c_str()));
  if (!opened) return names;
  while (const dirent* const entry = ::readdir(opened.get())) names.emplace_back(entry->d_name);
  return names;
}

}  // namespace command
