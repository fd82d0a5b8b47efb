#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "failure.h"
#include "private_folder.h"
#include "raw_file.h"

namespace command {

std::string temporary_folder() {
  const char* const set = ::secure_getenv("TMPDIR");
  return set != nullptr && *set != '\0' ? set : "/tmp";
}

private_folder::private_folder(const std::string& purpose)
    : name_(temporary_folder() + "/" + purpose + "-XXXXXX") {
  if (::mkdtemp(name_.data()) == nullptr) {
    throw failure("cannot create a temporary folder " + name_ + ": " + last_reason());
  }
}

private_folder::~private_folder() {
  // Without memory of its own where it can: that may be what has run out.
  if (::rmdir(name_.c_str()) == 0) return;
  try {
    std::error_code ignored;
    std::filesystem::remove_all(name_, ignored);
  } catch (...) {
    // There is no memory for it.
  }
}

}  // namespace command
