#include "platform/sha1.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string hex(const ovf::sha1::digest& digest) {
  std::string text;
  for (const std::uint8_t byte : digest) {
    text += "0123456789abcdef"[byte >> 4];
    text += "0123456789abcdef"[byte & 15];
  }
  return text;
}

void add(ovf::sha1& hash, const std::string& text) { hash.add(std::as_bytes(std::span(text))); }

std::string sha1_of(const std::string& text) {
  ovf::sha1 hash;
  add(hash, text);
  return hex(hash.finish());
}

TEST(Sha1, PublishedVectors) {
  EXPECT_EQ(sha1_of(""), "da39a3ee5e6b4b0d3255bfef95601890afd80709");
  EXPECT_EQ(sha1_of("abc"), "a9993e364706816aba3e25717850c26c9cd0d89d");
  EXPECT_EQ(sha1_of("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
            "84983e441c3bd26ebaae4aa1f95129e5e54670f1");
  EXPECT_EQ(sha1_of(std::string(1'000'000, 'a')), "34aa973cd4c4daa4f61eeb2bdbad27316534016f");
}

TEST(Sha1, PiecesOfEverySizeGiveTheSameDigest) {
  const std::string text(1'000'000, 'a');
  for (const std::size_t piece : {1U, 7U, 63U, 64U, 65U, 4096U}) {
    ovf::sha1 hash;
    for (std::size_t at = 0; at < text.size(); at += piece) add(hash, text.substr(at, piece));
    EXPECT_EQ(hex(hash.finish()), "34aa973cd4c4daa4f61eeb2bdbad27316534016f") << piece;
  }
}

/// The padding needs a block of its own from 56 bytes on.
TEST(Sha1, LengthsAroundTheEndOfABlock) {
  EXPECT_EQ(sha1_of(std::string(55, 'a')), "c1c8bbdc22796e28c0e15163d20899b65621d65a");
  EXPECT_EQ(sha1_of(std::string(56, 'a')), "c2db330f6083854c99d4b5bfb6e8f29f201be699");
  EXPECT_EQ(sha1_of(std::string(64, 'a')), "0098ba824b5c16427bd7a1122a5a442a25ec644d");
}

}  // namespace
