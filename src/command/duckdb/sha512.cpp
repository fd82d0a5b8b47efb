#include "duckdb/sha512.h"

#include <bit>
#include <vector>

namespace command {
namespace {

// The fractional parts of the cube roots of the first eighty primes.
constexpr std::uint64_t round_constants[80] = {
    0x428A2F98D728AE22, 0x7137449123EF65CD, 0xB5C0FBCFEC4D3B2F, 0xE9B5DBA58189DBBC, 0x3956C25BF348B538,
    0x59F111F1B605D019, 0x923F82A4AF194F9B, 0xAB1C5ED5DA6D8118, 0xD807AA98A3030242, 0x12835B0145706FBE,
    0x243185BE4EE4B28C, 0x550C7DC3D5FFB4E2, 0x72BE5D74F27B896F, 0x80DEB1FE3B1696B1, 0x9BDC06A725C71235,
    0xC19BF174CF692694, 0xE49B69C19EF14AD2, 0xEFBE4786384F25E3, 0x0FC19DC68B8CD5B5, 0x240CA1CC77AC9C65,
    0x2DE92C6F592B0275, 0x4A7484AA6EA6E483, 0x5CB0A9DCBD41FBD4, 0x76F988DA831153B5, 0x983E5152EE66DFAB,
    0xA831C66D2DB43210, 0xB00327C898FB213F, 0xBF597FC7BEEF0EE4, 0xC6E00BF33DA88FC2, 0xD5A79147930AA725,
    0x06CA6351E003826F, 0x142929670A0E6E70, 0x27B70A8546D22FFC, 0x2E1B21385C26C926, 0x4D2C6DFC5AC42AED,
    0x53380D139D95B3DF, 0x650A73548BAF63DE, 0x766A0ABB3C77B2A8, 0x81C2C92E47EDAEE6, 0x92722C851482353B,
    0xA2BFE8A14CF10364, 0xA81A664BBC423001, 0xC24B8B70D0F89791, 0xC76C51A30654BE30, 0xD192E819D6EF5218,
    0xD69906245565A910, 0xF40E35855771202A, 0x106AA07032BBD1B8, 0x19A4C116B8D2D0C8, 0x1E376C085141AB53,
    0x2748774CDF8EEB99, 0x34B0BCB5E19B48A8, 0x391C0CB3C5C95A63, 0x4ED8AA4AE3418ACB, 0x5B9CCA4F7763E373,
    0x682E6FF3D6B2B8A3, 0x748F82EE5DEFB2FC, 0x78A5636F43172F60, 0x84C87814A1F0AB72, 0x8CC702081A6439EC,
    0x90BEFFFA23631E28, 0xA4506CEBDE82BDE9, 0xBEF9A3F7B2C67915, 0xC67178F2E372532B, 0xCA273ECEEA26619C,
    0xD186B8C721C0C207, 0xEADA7DD6CDE0EB1E, 0xF57D4F7FEE6ED178, 0x06F067AA72176FBA, 0x0A637DC5A2C898A6,
    0x113F9804BEF90DAE, 0x1B710B35131C471B, 0x28DB77F523047D84, 0x32CAAB7B40C72493, 0x3C9EBE0A15C9BEBC,
    0x431D67C49C100D4C, 0x4CC5D4BECB3E42B6, 0x597F299CFC657E2A, 0x5FCB6FAB3AD6FAEC, 0x6C44198C4A475817};

std::uint64_t big_endian(const char* bytes) {
  std::uint64_t word = 0;
  for (int i = 0; i < 8; ++i) word = (word << 8) | static_cast<unsigned char>(bytes[i]);
  return word;
}

/// The block's sixteen words, and the sixty-four that follow from them.
std::array<std::uint64_t, 80> schedule(const char* bytes) {
  std::array<std::uint64_t, 80> words{};
  for (std::size_t t = 0; t < 16; ++t) words[t] = big_endian(bytes + 8 * t);
  for (std::size_t t = 16; t < 80; ++t) {
    const std::uint64_t early = words[t - 15];
    const std::uint64_t late = words[t - 2];
    words[t] = words[t - 16] + (std::rotr(early, 1) ^ std::rotr(early, 8) ^ (early >> 7)) + words[t - 7] +
               (std::rotr(late, 19) ^ std::rotr(late, 61) ^ (late >> 6));
  }
  return words;
}

}  // namespace

void sha512::take_block(const char* bytes) {
  const std::array<std::uint64_t, 80> words = schedule(bytes);
  auto [a, b, c, d, e, f, g, h] = state_;
  for (std::size_t t = 0; t < 80; ++t) {
    const std::uint64_t first = h + (std::rotr(e, 14) ^ std::rotr(e, 18) ^ std::rotr(e, 41)) +
                                ((e & f) ^ (~e & g)) + round_constants[t] + words[t];
    const std::uint64_t second =
        (std::rotr(a, 28) ^ std::rotr(a, 34) ^ std::rotr(a, 39)) + ((a & b) ^ (a & c) ^ (b & c));
    h = g;
    g = f;
    f = e;
    e = d + first;
    d = c;
    c = b;
    b = a;
    a = first + second;
  }
  const std::array<std::uint64_t, 8> added = {a, b, c, d, e, f, g, h};
  for (std::size_t i = 0; i < added.size(); ++i) state_[i] += added[i];
}

void sha512::add(std::string_view bytes) {
  bytes_ += bytes.size();
  if (!rest_.empty()) {
    const std::string_view taken = bytes.substr(0, block - rest_.size());
    rest_ += taken;
    bytes.remove_prefix(taken.size());
    if (rest_.size() < block) return;
    take_block(rest_.data());
    rest_.clear();
  }
  for (; bytes.size() >= block; bytes.remove_prefix(block)) take_block(bytes.data());
  rest_ = bytes;
}

sha512::digest sha512::finish() {
  constexpr std::size_t length_bytes = 16;
  std::string end = "\x80";
  while ((rest_.size() + end.size() + length_bytes) % block != 0) end.push_back('\0');
  // The length in bits has 128 of them; a count of bytes in 64 has its upper three in the ninth byte.
  end.append(7, '\0');
  end.push_back(static_cast<char>(bytes_ >> 61));
  for (int shift = 56; shift >= 0; shift -= 8) end.push_back(static_cast<char>((bytes_ << 3) >> shift));
  add(end);
  digest result{};
  for (std::size_t i = 0; i < result.size(); ++i) {
    result[i] = static_cast<std::uint8_t>(state_[i / 8] >> (56 - 8 * (i % 8)));
  }
  return result;
}

std::string integrity_of(const sha512::digest& digest) {
  constexpr const char* letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text = "sha512-";
  for (std::size_t i = 0; i < digest.size(); i += 3) {
    std::uint32_t bits = 0;
    for (std::size_t k = i; k < i + 3; ++k) bits = (bits << 8) | (k < digest.size() ? digest[k] : 0u);
    const std::size_t there = i + 3 <= digest.size() ? 4 : digest.size() - i + 1;
    for (std::size_t k = 0; k < 4; ++k) text += k < there ? letters[(bits >> (18 - 6 * k)) & 63] : '=';
  }
  return text;
}

std::string integrity_of(raw_file& file) {
  constexpr std::size_t piece = 1 << 20;
  std::vector<char> bytes(piece);
  sha512 sum;
  while (const std::size_t done = file.read(bytes.data(), bytes.size())) sum.add({bytes.data(), done});
  return integrity_of(sum.finish());
}

bool is_integrity(std::string_view text) noexcept {
  constexpr std::size_t length = 7 + 88;
  return text.size() == length && text.starts_with("sha512-") && text.ends_with("==");
}

}  // namespace command
