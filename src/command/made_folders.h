// The folders above a file that is to be written, made where they are missing.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace command {

class made_folders {
 public:
  /// For the user alone where they are new. Throws `failure`.
  explicit made_folders(const std::string& folder);
  /// Takes away those that it made, unless they were kept.
  ~made_folders();
  made_folders(const made_folders&) = delete;
  made_folders& operator=(const made_folders&) = delete;

  void keep() noexcept { made_.clear(); }

 private:
  void make(const std::filesystem::path& folder);
  void remove() noexcept;

  std::vector<std::filesystem::path> made_;
};

}  // namespace command
