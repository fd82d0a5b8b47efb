// Why the rows of a table file could not be read while a statement ran.
#pragma once

#include <mutex>
#include <string>

namespace command {

/// The reason of the first thread that failed. Any thread may call.
class scan_failure {
 public:
  /// For the next statement.
  void forget() {
    const std::lock_guard held(mutex_);
    words_.clear();
  }
  void note(const std::string& words) {
    const std::lock_guard held(mutex_);
    if (words_.empty()) words_ = words;
  }
  /// Empty where none has failed.
  std::string words() const {
    const std::lock_guard held(mutex_);
    return words_;
  }

 private:
  mutable std::mutex mutex_;
  std::string words_;
};

}  // namespace command
