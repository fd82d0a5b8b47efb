// What the environment says.
#pragma once

#include <cstdlib>
#include <string>

namespace ovf {

/// Empty where the variable is not set.
inline std::string environment_value(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

}  // namespace ovf
