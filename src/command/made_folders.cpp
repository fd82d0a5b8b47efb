#include "made_folders.h"

#include <system_error>

#include "failure.h"
#include "utf8_path.h"

namespace command {

namespace fs = std::filesystem;

made_folders::made_folders(const std::string& folder) {
  try {
    // An end like "folder/." would be looked for in a folder that is not there yet.
    make(fs::absolute(path_of_utf8(folder)).lexically_normal());
  } catch (const fs::filesystem_error& error) {
    remove();
    throw failure("cannot make the folder " + folder + ": " + error.code().message());
  }
}

made_folders::~made_folders() { remove(); }

void made_folders::make(const fs::path& folder) {
  if (fs::is_directory(folder)) return;
  const fs::path above = folder.parent_path();
  if (above != folder && !above.empty()) make(above);
  if (fs::exists(folder) && !fs::is_directory(folder)) {
    throw fs::filesystem_error("", folder, std::make_error_code(std::errc::not_a_directory));
  }
  // What ends in a separator is its own parent's folder, and there by now.
  if (!fs::create_directory(folder)) return;
  made_.push_back(folder);
  fs::permissions(folder, fs::perms::owner_all);
}

void made_folders::remove() noexcept {
  std::error_code ignored;
  for (auto folder = made_.rbegin(); folder != made_.rend(); ++folder) fs::remove(*folder, ignored);
  made_.clear();
}

}  // namespace command
