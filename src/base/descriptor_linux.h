// An open file descriptor that closes itself and leaves errno as it was.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace ovf {

class descriptor {
 public:
  descriptor() = default;
  explicit descriptor(int number) noexcept : number_(number) {}
  descriptor(descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  descriptor& operator=(descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~descriptor() {
    if (number_ < 0) return;
    const int reason = errno;
    ::close(number_);
    errno = reason;
  }

  int get() const noexcept { return number_; }
  explicit operator bool() const noexcept { return number_ >= 0; }

 private:
  int number_ = -1;
};

}  // namespace ovf
