// Memory for the values of a column: aligned as readers of arrays like it, not filled.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>

namespace ovf {

class raw_buffer {
 public:
  raw_buffer() noexcept = default;
  /// Throws std::bad_alloc. A buffer of no bytes is a buffer too.
  explicit raw_buffer(std::size_t bytes) : memory_(allocate(bytes)), bytes_(bytes) {}

  void* data() const noexcept { return memory_.get(); }
  template <class Value>
  Value* as() const noexcept {
    return static_cast<Value*>(memory_.get());
  }
  std::size_t size() const noexcept { return bytes_; }
  explicit operator bool() const noexcept { return memory_ != nullptr; }

  /// Makes room for `bytes`, and keeps the first `used` ones.
  void grow(std::size_t bytes, std::size_t used) {
    if (bytes <= bytes_) return;
    raw_buffer larger(std::max(bytes, bytes_ + bytes_ / 2));
    if (used != 0) std::memcpy(larger.data(), data(), used);
    *this = std::move(larger);
  }

 private:
  static constexpr std::align_val_t alignment{64};
  struct deleter {
    void operator()(void* memory) const noexcept { ::operator delete(memory, alignment); }
  };

  static void* allocate(std::size_t bytes) {
    return ::operator new(std::max<std::size_t>(bytes, 1), alignment);
  }

  std::unique_ptr<void, deleter> memory_;
  std::size_t bytes_ = 0;
};

}  // namespace ovf
