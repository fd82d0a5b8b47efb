#include <sys/stat.h>

#include "file_identity.h"
#include "words.h"

namespace command {

std::string file_identity(const std::string& name) {
  struct stat facts {};
  if (::stat(name.c_str(), &facts) != 0) return {};
  // Whoever changes a file can set the time of its last change back, but not the time when he did that.
  return fmt::format("{} {} {} {}.{} {}.{}", facts.st_dev, facts.st_ino, facts.st_size, facts.st_mtim.tv_sec,
                     facts.st_mtim.tv_nsec, facts.st_ctim.tv_sec, facts.st_ctim.tv_nsec);
}

}  // namespace command
