#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

#include "platform/sha1.h"

namespace ovf {
namespace {

constexpr std::size_t block_bytes = 64;
constexpr std::size_t length_bytes = 8;

using words5 = std::array<std::uint32_t, 5>;

std::uint32_t big_endian_word(const std::byte* place) noexcept {
  std::uint32_t word = 0;
  std::memcpy(&word, place, sizeof word);
  return std::endian::native == std::endian::little ? __builtin_bswap32(word) : word;
}

/// The schedule holds the last 16 words; word `t` replaces the one of 16 rounds before.
std::uint32_t scheduled(std::array<std::uint32_t, 16>& words, unsigned t) noexcept {
  std::uint32_t& word = words[t & 15];
  word = std::rotl(words[(t + 13) & 15] ^ words[(t + 8) & 15] ^ words[(t + 2) & 15] ^ word, 1);
  return word;
}

template <unsigned Round>
void step(words5& h, std::array<std::uint32_t, 16>& words, const std::byte* block) noexcept {
  const std::uint32_t word = Round < 16
                                 ? words[Round & 15] = big_endian_word(block + std::size_t{4} * (Round & 15))
                                 : scheduled(words, Round);
  std::uint32_t mixed = 0;
  if constexpr (Round < 20) {
    mixed = (h[3] ^ (h[1] & (h[2] ^ h[3]))) + 0x5A827999U;
  } else if constexpr (Round < 40) {
    mixed = (h[1] ^ h[2] ^ h[3]) + 0x6ED9EBA1U;
  } else if constexpr (Round < 60) {
    mixed = ((h[1] & h[2]) | (h[3] & (h[1] | h[2]))) + 0x8F1BBCDCU;
  } else {
    mixed = (h[1] ^ h[2] ^ h[3]) + 0xCA62C1D6U;
  }
  h = {std::rotl(h[0], 5) + mixed + h[4] + word, h[0], std::rotl(h[1], 30), h[2], h[3]};
}

template <unsigned... Rounds>
void all_steps(words5& h, const std::byte* block, std::integer_sequence<unsigned, Rounds...>) noexcept {
  std::array<std::uint32_t, 16> words{};
  (step<Rounds>(h, words, block), ...);
}

void take_block(words5& chain, const std::byte* block) noexcept {
  words5 h = chain;
  all_steps(h, block, std::make_integer_sequence<unsigned, 80>());
  for (std::size_t i = 0; i < chain.size(); ++i) chain[i] += h[i];
}

}  // namespace

struct sha1::state {
  words5 chain = {0x67452301U, 0xEFCDAB89U, 0x98BADCFEU, 0x10325476U, 0xC3D2E1F0U};
  std::array<std::byte, block_bytes> block{};
  std::uint64_t bytes = 0;

  std::size_t pending() const noexcept { return static_cast<std::size_t>(bytes % block_bytes); }
};

sha1::sha1() : state_(std::make_unique<state>()) {}

sha1::~sha1() = default;

void sha1::add(std::span<const std::byte> bytes) {
  while (!bytes.empty()) {
    const std::size_t held = state_->pending();
    if (held == 0 && bytes.size() >= block_bytes) {
      take_block(state_->chain, bytes.data());
      state_->bytes += block_bytes;
      bytes = bytes.subspan(block_bytes);
      continue;
    }
    const std::size_t taken = std::min(bytes.size(), block_bytes - held);
    std::memcpy(state_->block.data() + held, bytes.data(), taken);
    state_->bytes += taken;
    bytes = bytes.subspan(taken);
    if (held + taken == block_bytes) take_block(state_->chain, state_->block.data());
  }
}

sha1::digest sha1::finish() {
  const std::uint64_t bits = state_->bytes * 8;
  std::array<std::byte, block_bytes + length_bytes> padding{std::byte{0x80}};
  const std::size_t held = state_->pending();
  const std::size_t zeros_end =
      held < block_bytes - length_bytes ? block_bytes - length_bytes : 2 * block_bytes - length_bytes;
  std::size_t length = zeros_end - held;
  for (int shift = 56; shift >= 0; shift -= 8) padding[length++] = static_cast<std::byte>(bits >> shift);
  add(std::span(padding).first(length));
  digest result{};
  for (std::size_t i = 0; i < result.size(); ++i) {
    result[i] = static_cast<std::uint8_t>(state_->chain[i / 4] >> (24 - 8 * (i % 4)));
  }
  return result;
}

}  // namespace ovf
