// Which words of a buffer were changed, so that those alone are written back.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace ovf {

/// Of a buffer of `Bytes` bytes, in words of `WordBytes`. Takes no memory of its own, whatever is changed.
template <std::size_t Bytes, std::size_t WordBytes>
class changed_words {
 public:
  /// Bytes from `begin` on; words that they touch in part count whole.
  void add(std::size_t begin, std::size_t bytes) noexcept {
    const std::size_t end = std::min((begin + bytes + WordBytes - 1) / WordBytes, words);
    for (std::size_t at = begin / WordBytes; at < end;) {
      const std::size_t within = at % 64;
      const std::size_t count = std::min(64 - within, end - at);
      bits_[at / 64] |= (~std::uint64_t{0} >> (64 - count)) << within;
      at += count;
    }
  }
  void clear() noexcept { bits_.fill(0); }

  /// Calls `take(begin, end)`, offsets in bytes, for each run of changed words from the first on.
  template <class Take>
  void each_run(Take take) const {
    for (std::size_t begin = next(0, true); begin < words;) {
      const std::size_t end = next(begin, false);
      take(begin * WordBytes, end * WordBytes);
      begin = next(end, true);
    }
  }

 private:
  static constexpr std::size_t words = Bytes / WordBytes;
  static_assert(words % 64 == 0);

  /// The first word from `at` on that was changed, or was not; `words` where there is none.
  std::size_t next(std::size_t at, bool changed) const noexcept {
    while (at < words) {
      const std::uint64_t bits = changed ? bits_[at / 64] : ~bits_[at / 64];
      const std::uint64_t left = bits >> (at % 64);
      if (left != 0) return at + static_cast<std::size_t>(std::countr_zero(left));
      at = (at / 64 + 1) * 64;
    }
    return words;
  }

  std::array<std::uint64_t, words / 64> bits_{};
};

}  // namespace ovf
