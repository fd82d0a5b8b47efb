// Whole files as bytes.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <vector>

namespace ovtest {

using bytes = std::vector<unsigned char>;

inline bytes read_bytes(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path.string());
  return bytes(std::istreambuf_iterator<char>(file), {});
}

inline void write_bytes(const std::filesystem::path& path, const bytes& content) {
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
  file.close();
  if (!file) throw std::runtime_error("cannot write " + path.string());
}

}  // namespace ovtest
