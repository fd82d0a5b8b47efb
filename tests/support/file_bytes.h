// Whole files as bytes.
#pragma once

#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace ovtest {

using bytes = std::vector<unsigned char>;

/// In one call: tests are not optimised, and byte by byte takes a second for some megabytes.
inline std::string read_text(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path.string());
  std::string text(std::filesystem::file_size(path), '\0');
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(file.gcount()));
  return text;
}

inline bytes read_bytes(const std::filesystem::path& path) {
  const std::string text = read_text(path);
  bytes content(text.size());
  if (!text.empty()) std::memcpy(content.data(), text.data(), text.size());
  return content;
}

inline void write_text(const std::filesystem::path& path, std::string_view text) {
  std::ofstream file(path, std::ios::binary);
  file.write(text.data(), static_cast<std::streamsize>(text.size()));
  file.close();
  if (!file) throw std::runtime_error("cannot write " + path.string());
}

inline void write_bytes(const std::filesystem::path& path, const bytes& content) {
  write_text(path, {reinterpret_cast<const char*>(content.data()), content.size()});
}

}  // namespace ovtest
