// Variables of the environment. Names are ASCII, values UTF-8.
#pragma once

#include <string>

namespace command {

/// Empty where there is none: nobody means anything by an empty one.
std::string environment_value(const char* name);

}  // namespace command
