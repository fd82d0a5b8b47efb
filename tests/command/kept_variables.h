// Variables of the environment that get back what they were when a test ends.
#pragma once

#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "support/process.h"

namespace ovtest {

class kept_variables {
 public:
  explicit kept_variables(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
      const char* const value = std::getenv(name.c_str());
      values_.emplace_back(name, value == nullptr ? "" : value);
    }
  }
  kept_variables(const kept_variables&) = delete;
  kept_variables& operator=(const kept_variables&) = delete;
  /// One that was not there is empty then, which means the same to the program.
  ~kept_variables() {
    for (const auto& [name, value] : values_) set_environment(name, value);
  }

 private:
  std::vector<std::pair<std::string, std::string>> values_;
};

}  // namespace ovtest
