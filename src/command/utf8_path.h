// Paths and their names, which are UTF-8 on every system.
#pragma once

#include <filesystem>
#include <string>

namespace command {

inline std::filesystem::path path_of_utf8(const std::string& name) {
  return {std::u8string(name.begin(), name.end())};
}

inline std::string utf8_of_path(const std::filesystem::path& path) {
  const std::u8string name = path.u8string();
  return {name.begin(), name.end()};
}

}  // namespace command
