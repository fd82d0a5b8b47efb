// SHA-1 as one writes it down from its definition, for the plain side of a comparison.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace ovbench {

class plain_sha1 {
 public:
  void add(const char* bytes, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      block_[used_++] = static_cast<unsigned char>(bytes[i]);
      if (used_ == block_.size()) take_block();
    }
    bits_ += std::uint64_t{count} * 8;
  }

  std::array<std::uint32_t, 5> finish() {
    const std::uint64_t bits = bits_;
    const char one = static_cast<char>(0x80);
    const char zero = 0;
    add(&one, 1);
    while (used_ != 56) add(&zero, 1);
    for (int shift = 56; shift >= 0; shift -= 8) {
      const char byte = static_cast<char>(bits >> shift);
      add(&byte, 1);
    }
    return chain_;
  }

 private:
  void take_block() {
    std::array<std::uint32_t, 80> w{};
    for (std::size_t t = 0; t < 16; ++t) {
      w[t] = std::uint32_t{block_[4 * t]} << 24 | std::uint32_t{block_[4 * t + 1]} << 16 |
             std::uint32_t{block_[4 * t + 2]} << 8 | std::uint32_t{block_[4 * t + 3]};
    }
    for (std::size_t t = 16; t < 80; ++t) w[t] = std::rotl(w[t - 3] ^ w[t - 8] ^ w[t - 14] ^ w[t - 16], 1);
    auto [a, b, c, d, e] = chain_;
    for (std::size_t t = 0; t < 80; ++t) {
      std::uint32_t f = b ^ c ^ d;
      std::uint32_t k = t < 40 ? 0x6ED9EBA1U : 0xCA62C1D6U;
      if (t < 20) {
        f = (b & c) | (~b & d);
        k = 0x5A827999U;
      } else if (t >= 40 && t < 60) {
        f = (b & c) | (b & d) | (c & d);
        k = 0x8F1BBCDCU;
      }
      const std::uint32_t next = std::rotl(a, 5) + f + e + k + w[t];
      e = d;
      d = c;
      c = std::rotl(b, 30);
      b = a;
      a = next;
    }
    chain_ = {chain_[0] + a, chain_[1] + b, chain_[2] + c, chain_[3] + d, chain_[4] + e};
    used_ = 0;
  }

  std::array<std::uint32_t, 5> chain_ = {0x67452301U, 0xEFCDAB89U, 0x98BADCFEU, 0x10325476U, 0xC3D2E1F0U};
  std::array<unsigned char, 64> block_{};
  std::size_t used_ = 0;
  std::uint64_t bits_ = 0;
};

}  // namespace ovbench
