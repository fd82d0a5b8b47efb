// Settings of the environment and folders for one test.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <string>

namespace ovtest {

/// A folder of its own, and environment variables that are as before at the end.
class environment_test : public testing::Test {
 protected:
  environment_test() {
    std::string pattern = testing::TempDir() + "ovfile-platform-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no folder for the test");
    folder = pattern;
  }
  ~environment_test() override {
    for (const auto& [name, value] : before_) restore(name, value);
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
  }

  void set(const std::string& name, const std::string& value) {
    remember(name);
    setenv(name.c_str(), value.c_str(), 1);
  }
  void unset(const std::string& name) {
    remember(name);
    unsetenv(name.c_str());
  }

  static void write(const std::filesystem::path& file, const std::string& content) {
    std::ofstream(file, std::ios::binary) << content;
  }
  static std::string content_of(const std::filesystem::path& file) {
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    return text.str();
  }

  std::filesystem::path folder;

 private:
  void remember(const std::string& name) {
    const char* value = getenv(name.c_str());
    before_.emplace(name, value == nullptr ? std::nullopt : std::optional<std::string>(value));
  }
  static void restore(const std::string& name, const std::optional<std::string>& value) {
    if (value) {
      setenv(name.c_str(), value->c_str(), 1);
    } else {
      unsetenv(name.c_str());
    }
  }

  std::map<std::string, std::optional<std::string>> before_;
};

}  // namespace ovtest
