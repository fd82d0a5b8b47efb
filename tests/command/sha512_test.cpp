#include "command/duckdb/sha512.h"

#include <gtest/gtest.h>

#include "support/scratch_folder.h"

namespace {

std::string hexadecimal(const command::sha512::digest& digest) {
  constexpr const char* digits = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : digest) text += {digits[byte >> 4], digits[byte & 15]};
  return text;
}

std::string sum_of(std::string_view text) {
  command::sha512 sum;
  sum.add(text);
  return hexadecimal(sum.finish());
}

// The vectors that the standard was published with.
constexpr const char* of_nothing =
    "cf83e1357eefb8bdf1542850d66d8007d620e4050b5715dc83f4a921d36ce9ce"
    "47d0d13c5d85f2b0ff8318d2877eec2f63b931bd47417a81a538327af927da3e";
constexpr const char* of_abc =
    "ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a"
    "2192992a274fc1a836ba3c23a3feebbd454d4423643ce80e2a9ac94fa54ca49f";
constexpr const char* of_56_letters =
    "204a8fc6dda82f0a0ced7beb8e08a41657c16ef468b228a8279be331a703c335"
    "96fd15c13b1b07f9aa1d3bea57789ca031ad85c7a71dd70354ec631238ca3445";
constexpr const char* of_112_letters =
    "8e959b75dae313da8cf4f72814fc143f8f7779c6eb9f7fa17299aeadb6889018"
    "501d289e4900f7e4331b99dec4b5433ac7d329eeb6dd26545e96e55b874be909";
constexpr const char* of_a_million =
    "e718483d0ce769644e2e42c7bc15b4638e1f98b13b2044285632a803afa973eb"
    "de0ff244877ea60a4cb0432ce577c31beb009c5c2c49aa2e4eadb217ad8cc09b";

TEST(sha512, gives_the_published_digests) {
  EXPECT_EQ(sum_of(""), of_nothing);
  EXPECT_EQ(sum_of("abc"), of_abc);
  EXPECT_EQ(sum_of("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"), of_56_letters);
  EXPECT_EQ(sum_of("abcdefghbcdefghicdefghijdefghijkefghijklfghijklmghijklmnhijklmno"
                   "ijklmnopjklmnopqklmnopqrlmnopqrsmnopqrstnopqrstu"),
            of_112_letters);
}

TEST(sha512, a_million_letters_in_pieces_of_any_size) {
  const std::string letters(1'000'000, 'a');
  for (const std::size_t piece : {std::size_t{1}, std::size_t{127}, std::size_t{128}, std::size_t{129},
                                  std::size_t{4096}, letters.size()}) {
    command::sha512 sum;
    for (std::size_t at = 0; at < letters.size(); at += piece) {
      sum.add(std::string_view(letters).substr(at, piece));
    }
    EXPECT_EQ(hexadecimal(sum.finish()), of_a_million) << piece;
  }
}

TEST(sha512, is_written_in_base_64) {
  command::sha512 sum;
  sum.add("abc");
  const std::string text = command::integrity_of(sum.finish());
  EXPECT_EQ(
      text,
      "sha512-3a81oZNherrMQXNJriBBMRLm+k6JqX6iCp7u5ktV05ohkpkqJ0/BqDa6PCOj/uu9RU1EI2Q86A4qmslPpUyknw==");
  EXPECT_TRUE(command::is_integrity(text));
  EXPECT_FALSE(command::is_integrity(text + "="));
  EXPECT_FALSE(command::is_integrity("sha256-" + text.substr(7)));
  EXPECT_FALSE(command::is_integrity(""));
}

TEST(sha512, of_a_file_begins_where_the_file_stands) {
  const ovtest::scratch_folder folder;
  bool taken = false;
  command::raw_file file = command::raw_file::make_new((folder / "f").string(), false, taken);
  file.write("xxabc");
  file.go_to(0);
  char two[2];
  ASSERT_EQ(file.read(two, 2), 2u);
  EXPECT_EQ(
      command::integrity_of(file),
      "sha512-3a81oZNherrMQXNJriBBMRLm+k6JqX6iCp7u5ktV05ohkpkqJ0/BqDa6PCOj/uu9RU1EI2Q86A4qmslPpUyknw==");
}

}  // namespace
