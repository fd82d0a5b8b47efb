// A path as the library takes it.
#pragma once

#include <filesystem>
#include <string>

#include "ovfile/ovfile.h"

namespace ovtest {

inline std::basic_string<OLECHAR> wide_path(const std::filesystem::path& path) {
  const std::u16string units = path.u16string();
  return {units.begin(), units.end()};
}

}  // namespace ovtest
