// The reference files that live beside the source tree and are no part of it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace ovtest {

/// $OVFILE_SHARED, else `../shared` beside the source root. May not be there.
inline std::filesystem::path shared_folder() {
  if (const char* set = std::getenv("OVFILE_SHARED"); set != nullptr && *set != '\0') return set;
#ifdef OVFILE_SOURCE_DIR
  const std::filesystem::path root = OVFILE_SOURCE_DIR;
#else
  const std::filesystem::path root = std::filesystem::path(__FILE__).parent_path() / ".." / "..";
#endif
  return root / ".." / "shared";
}

/// A copy that may be changed and, on Windows too, removed: the reference files themselves are read-only.
inline void copy_writable(const std::filesystem::path& source, const std::filesystem::path& target) {
  std::filesystem::copy_file(source, target);
  std::filesystem::permissions(target, std::filesystem::perms::owner_write,
                               std::filesystem::perm_options::add);
}

}  // namespace ovtest
