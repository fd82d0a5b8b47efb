// What the system says of a failure. On Windows alone: elsewhere errno has it.
#pragma once

#include <string>

namespace command {

/// The words, UTF-8 and one line, for a code of GetLastError.
std::string system_reason(unsigned long code);

}  // namespace command
