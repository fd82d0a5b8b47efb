#include <sys/stat.h>

#include "file_identity.h"
#include "words.h"

namespace command {

std::string file_identity(const std::string& name) {
  struct stat facts {};
  if (::stat(name.c_str(), &facts) != 0) return {};
  return fmt::format("{} {} {} {}.{}", facts.st_dev, facts.st_ino, facts.st_size, facts.st_mtim.tv_sec,
                     facts.st_mtim.tv_nsec);
}

}  // namespace command
