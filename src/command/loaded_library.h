// A shared library that is loaded by its path. Names are UTF-8.
#pragma once

#include <string>

namespace command {

/// Loads the library for good; null when that fails, with the system's reason in `reason`.
void* load_library(const std::string& path, std::string& reason);
/// Null where the library has no such function.
void* find_function(void* library, const char* name) noexcept;
/// The folder of this program's file, without a separator at its end; empty where the system does not tell.
std::string program_folder();

}  // namespace command
