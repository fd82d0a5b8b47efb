#include <cstdlib>

#include "environment.h"

namespace command {

std::string environment_value(const char* name) {
  const char* const value = ::secure_getenv(name);
  return value == nullptr ? "" : value;
}

}  // namespace command
