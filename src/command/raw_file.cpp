#include "raw_file.h"

#include <cerrno>
#include <system_error>

#include "failure.h"

namespace command {

raw_file raw_file::open_regular(const std::string& name) {
  raw_file file = open_at_once(name);
  std::uint64_t bytes = 0;
  if (!file.is_regular(bytes)) throw failure("cannot read " + name + ": it is not a regular file");
  return file;
}

std::string last_reason() { return std::generic_category().message(errno); }

}  // namespace command
