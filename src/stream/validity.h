// Which values of a column are there: one bit for each, the lowest first.
#pragma once

#include <cstdint>

#include "stream/raw_buffer.h"

namespace ovf {

class validity {
 public:
  validity() = default;
  /// All of `rows` values are there until one is said to be missing.
  explicit validity(std::size_t rows) : bits_((rows + 7) / 8) {
    std::memset(bits_.data(), 0xFF, bits_.size());
  }

  void miss(std::size_t index) noexcept {
    auto& byte = bits_.as<std::uint8_t>()[index / 8];
    byte = static_cast<std::uint8_t>(byte & ~(1U << index % 8));
    ++missing_;
  }
  std::int64_t missing() const noexcept { return missing_; }
  /// The bits; no buffer where nothing is missing.
  raw_buffer take() noexcept { return missing_ == 0 ? raw_buffer() : std::move(bits_); }

 private:
  raw_buffer bits_;
  std::int64_t missing_ = 0;
};

}  // namespace ovf
