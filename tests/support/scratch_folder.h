// An empty folder of its own for one test, removed at the end.
#pragma once

#include <filesystem>
#include <random>
#include <string>

namespace ovtest {

class scratch_folder {
 public:
  scratch_folder() {
    std::random_device random;
    do {
      path_ = std::filesystem::temp_directory_path() / ("ovfile-test-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(path_));
  }
  scratch_folder(const scratch_folder&) = delete;
  scratch_folder& operator=(const scratch_folder&) = delete;
  ~scratch_folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path operator/(const std::filesystem::path& name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

}  // namespace ovtest
