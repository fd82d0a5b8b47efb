// An empty folder of its own for one test, removed at the end.
#pragma once

#include <chrono>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <random>
#include <string>
#include <thread>

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
    // Some systems let go of a file only a moment after the program that had it open has ended.
    for (int attempt = 0; !remove() && attempt < attempts; ++attempt) {
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    if (!removed_) std::fprintf(stderr, "%s could not be removed\n", path_.string().c_str());
  }

  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path operator/(const std::filesystem::path& name) const { return path_ / name; }

 private:
  static constexpr int attempts = 20;

  bool remove() noexcept {
    try {
      std::error_code error;
      std::filesystem::remove_all(path_, error);
      removed_ = !error && !std::filesystem::exists(path_, error);
    } catch (const std::exception&) {
      removed_ = false;
    }
    return removed_;
  }

  std::filesystem::path path_;
  bool removed_ = false;
};

}  // namespace ovtest
