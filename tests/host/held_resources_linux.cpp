#include "host/held_resources.h"

namespace ovtest {

// The sanitizers keep freed memory back, and look for leaks themselves.
std::size_t private_bytes() { return 0; }

bool holds_file(const std::filesystem::path& path) {
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code gone;
    if (std::filesystem::read_symlink(entry.path(), gone) == path) return true;
  }
  return false;
}

}  // namespace ovtest
