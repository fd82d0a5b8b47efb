#include "raw_file.h"

#include <cerrno>
#include <system_error>

namespace command {

std::string last_reason() { return std::generic_category().message(errno); }

}  // namespace command
