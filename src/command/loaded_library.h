// A shared library that is loaded by its path. Names are UTF-8.
#pragma once

#include <string>

namespace command {

/// When the functions that a library needs of others are looked for.
enum class binding {
  at_once,     ///< a library that lacks one is not loaded
  when_called  ///< loads a large library in half the time; one that is lacking ends the program at its call
};

/// Loads the library for good; null when that fails, with the system's reason in `reason`. Windows always
/// binds at once.
void* load_library(const std::string& path, binding functions, std::string& reason);
/// Null where the library has no such function.
void* find_function(void* library, const char* name) noexcept;
/// The folder of this program's file, without a separator at its end; empty where the system does not tell.
std::string program_folder();

}  // namespace command
