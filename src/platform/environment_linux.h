// What the environment says.
#pragma once

#include <cstdlib>
#include <string>

namespace ovf {

/// Empty where the variable is not set, and in a program that has rights which its caller has not.
inline std::string environment_value(const char* name) {
  const char* value = ::secure_getenv(name);
  return value != nullptr ? value : "";
}

}  // namespace ovf
