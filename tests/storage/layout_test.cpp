#include <gtest/gtest.h>

#include "storage/byte_order.h"
#include "storage/dictionary_entry.h"
#include "storage/format.h"
#include "storage/ovdd.h"
#include "storage/words.h"
#include "support/failing_files.h"

namespace {

using ovf::byte_order;

TEST(Layout, HeaderPagesFollowTheAtoms) {
  EXPECT_EQ(ovf::format::header_pages(0), 1U);
  EXPECT_EQ(ovf::format::header_pages(64), 1U);
  EXPECT_EQ(ovf::format::header_pages(68), 1U);
  EXPECT_EQ(ovf::format::header_pages(69), 2U);
  EXPECT_EQ(ovf::format::header_pages(140), 2U);
  EXPECT_EQ(ovf::format::header_pages(141), 3U);
  EXPECT_EQ(ovf::format::header_pages(256), 4U);
}

TEST(Layout, RecordsFillTheFirst508Words) {
  EXPECT_EQ(ovf::format::records_per_page(0), 0U);
  EXPECT_EQ(ovf::format::records_per_page(1), 508U);
  EXPECT_EQ(ovf::format::records_per_page(4), 127U);
  EXPECT_EQ(ovf::format::records_per_page(7), 72U);
  EXPECT_EQ(ovf::format::records_per_page(254), 2U);
  EXPECT_EQ(ovf::format::records_per_page(255), 1U);
  EXPECT_EQ(ovf::format::records_per_page(256), 1U);
}

/// What a word reads as when its bytes are b0, b1, … in the file.
std::uint32_t rearranged_bytes(byte_order order) { return ovf::rearranged(std::uint32_t{0xB3B2B1B0}, order); }

TEST(ByteOrder, FourByteWordsRearrangeByTheirCode) {
  EXPECT_EQ(rearranged_bytes(byte_order::native), 0xB3B2B1B0U);
  EXPECT_EQ(rearranged_bytes(byte_order::bytes_swapped), 0xB2B3B0B1U);
  EXPECT_EQ(rearranged_bytes(byte_order::halves_swapped), 0xB1B0B3B2U);
  EXPECT_EQ(rearranged_bytes(byte_order::reversed), 0xB0B1B2B3U);
}

TEST(ByteOrder, TheHalvesOfEightByteWordsNeverChangePlaces) {
  constexpr std::uint64_t word = 0xB7B6B5B4B3B2B1B0;
  EXPECT_EQ(ovf::rearranged(word, byte_order::native), word);
  EXPECT_EQ(ovf::rearranged(word, byte_order::bytes_swapped), 0xB6B7B4B5B2B3B0B1U);
  EXPECT_EQ(ovf::rearranged(word, byte_order::halves_swapped), 0xB5B4B7B6B1B0B3B2U);
  EXPECT_EQ(ovf::rearranged(word, byte_order::reversed), 0xB4B5B6B7B0B1B2B3U);
}

TEST(ByteOrder, EveryCodeIsItsOwnInverse) {
  for (const byte_order order : ovf::tried_orders) {
    EXPECT_EQ(ovf::rearranged(ovf::rearranged(std::uint32_t{0x12345678}, order), order), 0x12345678U);
  }
}

TEST(Words, TextWordsHaveFourCharactersAndBlanks) {
  std::byte single[4];
  std::byte wide[8];
  ovf::store_text<ovf::single_precision>(single, "AB");
  ovf::store_text<ovf::double_precision>(wide, "SYSTEM");
  EXPECT_EQ(std::memcmp(single, "AB  ", 4), 0);
  EXPECT_EQ(std::memcmp(wide, "SYST    ", 8), 0);
}

TEST(Words, ATextWordIsReadUpToItsFirstNul) {
  EXPECT_EQ(ovf::load_text(reinterpret_cast<const std::byte*>("AB\0C")), "AB");
  EXPECT_EQ(ovf::load_text(reinterpret_cast<const std::byte*>("A  BCDEF")), "A  B");
  EXPECT_EQ(ovf::load_text(reinterpret_cast<const std::byte*>("\0BCD")), "");
}

TEST(Words, NumbersKeepEveryBitPattern) {
  const std::uint32_t pattern = 0x7FA00001;  // a signalling NaN with a payload
  std::byte word[4];
  std::memcpy(word, &pattern, 4);
  const float number = ovf::load_number<ovf::single_precision>(word, byte_order::native);
  std::byte copy[4];
  ovf::store_number<ovf::single_precision>(copy, number, byte_order::native);
  EXPECT_EQ(std::memcmp(word, copy, 4), 0);
}

TEST(Numbers, BeyondSinglePrecisionBecomeInfinities) {
  using ovf::number_from;
  EXPECT_EQ(number_from<ovf::single_precision>(0.1), 0.1F);
  EXPECT_EQ(number_from<ovf::single_precision>(1e300), std::numeric_limits<float>::infinity());
  EXPECT_EQ(number_from<ovf::single_precision>(-1e39), -std::numeric_limits<float>::infinity());
  EXPECT_EQ(number_from<ovf::single_precision>(0x1.fffffep127), 0x1.fffffep127F);
  EXPECT_EQ(number_from<ovf::double_precision>(1e300), 1e300);
}

/// Header words of a new table, one by one.
template <class Precision>
class NewHeader {
 public:
  explicit NewHeader(std::vector<std::byte> pages) : pages_(std::move(pages)) {}

  std::string raw(std::size_t file_word) const {
    return {reinterpret_cast<const char*>(pages_.data()) + file_word * Precision::word_bytes,
            Precision::word_bytes};
  }
  double number(std::size_t file_word) const {
    return static_cast<double>(
        ovf::load_number<Precision>(pages_.data() + file_word * Precision::word_bytes, byte_order::native));
  }
  std::size_t bytes() const { return pages_.size(); }

 private:
  std::vector<std::byte> pages_;
};

TEST(Ovdd32, WritesTheFixedWordsOfTheHeader) {
  ovf::ovdd32 dictionary;
  dictionary.set_description("assays of the north pit");
  const NewHeader<ovf::single_precision> header(dictionary.finished());
  ASSERT_EQ(header.bytes(), 2048U);
  for (const std::size_t word : std::initializer_list<std::size_t>{0, 1, 2, 3, 10, 19})
    EXPECT_EQ(header.raw(word), "    ") << word;
  EXPECT_EQ(header.raw(4), "assa");
  EXPECT_EQ(header.raw(9), "pit ");
  EXPECT_EQ(header.raw(20) + header.raw(21), "SYSTEM  ");
  EXPECT_EQ(header.number(22), 0);
  EXPECT_EQ(header.number(23), 2);
  EXPECT_EQ(header.number(24), 987654);
  EXPECT_EQ(header.number(25), 0);
  EXPECT_EQ(header.number(26), 1);
  EXPECT_EQ(header.number(27), 0);
  for (std::size_t word = 28; word < 512; ++word) EXPECT_EQ(header.number(word), 0) << word;
}

TEST(Ovdd64, SpreadsTextsOverTheFirstHalvesOfItsWords) {
  ovf::ovdd64 dictionary;
  const NewHeader<ovf::double_precision> header(dictionary.finished());
  ASSERT_EQ(header.bytes(), 4096U);
  EXPECT_EQ(header.raw(20) + header.raw(21), "SYST    EM      ");
  EXPECT_EQ(header.number(24), 456789);
  EXPECT_EQ(header.number(26), 1);
}

TEST(Ovdd32, CutsTheDescriptionAt64Characters) {
  ovf::ovdd32 dictionary;
  dictionary.set_description(std::string(64, 'd') + "beyond");
  const NewHeader<ovf::single_precision> header(dictionary.finished());
  EXPECT_EQ(header.raw(19), "dddd");
  EXPECT_EQ(header.raw(20), "SYST");
}

TEST(Ovdd32, WritesAnEntryForEveryAtom) {
  ovf::ovdd32 dictionary;
  dictionary.add_text("BHID", "AB        ", true);
  dictionary.add_number("CU", 0.5F, true);
  dictionary.add_number("DENSITY", 2.75F, false);
  const NewHeader<ovf::single_precision> header(dictionary.finished());
  EXPECT_EQ(header.number(25), 5);
  EXPECT_EQ(header.raw(28) + header.raw(29) + header.raw(30), "BHID    A   ");
  EXPECT_EQ(header.number(31), 1);
  EXPECT_EQ(header.number(32), 1);
  EXPECT_EQ(header.number(33), 0);
  EXPECT_EQ(header.raw(34), "AB  ");
  EXPECT_EQ(header.number(38), 2);  // position of the second atom
  EXPECT_EQ(header.number(39), 2);  // its word of the field
  EXPECT_EQ(header.raw(41), "    ");
  EXPECT_EQ(header.number(45), 3);
  EXPECT_EQ(header.raw(49) + header.raw(50) + header.raw(51), "CU      N   ");
  EXPECT_EQ(header.number(52), 4);
  EXPECT_EQ(header.number(53), 1);
  EXPECT_EQ(header.number(55), 0.5);
  EXPECT_EQ(header.number(59), 0);  // implicit
  EXPECT_EQ(header.number(60), 1);
  EXPECT_EQ(header.number(62), 2.75);
}

TEST(Ovdd32, AtomsOfAnImplicitTextCountFromTwo) {
  ovf::ovdd32 dictionary;
  dictionary.add_text("ZONE", "OXIDE   ", false);
  const NewHeader<ovf::single_precision> header(dictionary.finished());
  EXPECT_EQ(header.number(31), 0);
  EXPECT_EQ(header.number(32), 2);
  EXPECT_EQ(header.raw(34), "OXID");
  EXPECT_EQ(header.number(39), 3);
  EXPECT_EQ(header.raw(41), "E   ");
}

TEST(Ovdd64, ANameOfEightCharactersHasZerosBehindItsType) {
  ovf::ovdd64 dictionary;
  dictionary.add_number("EIGHTCHR", 1, true);
  const NewHeader<ovf::double_precision> header(dictionary.finished());
  EXPECT_EQ(header.raw(28), "EIGH    ");
  EXPECT_EQ(header.raw(29), "TCHR    ");
  EXPECT_EQ(header.raw(30), std::string("N   \0\0\0\0", 8));
  EXPECT_EQ(header.raw(33), std::string(8, '\0'));
}

TEST(Ovdd64, ALongNameIsSpreadOverItsEntry) {
  ovf::ovdd64 dictionary;
  dictionary.add_number("ABCDEFGHIJKLMNOPQRSTUVWX", 1, true);
  const NewHeader<ovf::double_precision> header(dictionary.finished());
  EXPECT_EQ(header.raw(28), "ABCDIJKL");
  EXPECT_EQ(header.raw(29), "EFGHMNOP");
  EXPECT_EQ(header.raw(30), "N   LONG");
  EXPECT_EQ(header.raw(33), "QRSTUVWX");
}

TEST(DictionaryEntry, LongNamesReadBackWhole) {
  for (const std::string name :
       {"A", "EIGHTCHR", "NINECHARS", "ABCDEFGHIJKLMNOP", "ABCDEFGHIJKLMNOPQRSTUVWX"}) {
    std::byte words[56]{};
    const ovf::entry_span<ovf::double_precision> entry(words);
    ovf::store_entry_name<ovf::double_precision>(entry, name);
    EXPECT_EQ(ovf::load_entry_name<ovf::double_precision>(entry), name);
  }
}

TEST(Ovdd64, SixtyEightAtomsFitOnePageAndSixtyNineTakeTwo) {
  ovf::ovdd64 dictionary;
  for (int i = 0; i < 68; ++i) dictionary.add_number("F" + std::to_string(i), i, true);
  EXPECT_EQ(NewHeader<ovf::double_precision>(dictionary.finished()).bytes(), 4096U);
  dictionary.add_number("F68", 68, true);
  const NewHeader<ovf::double_precision> header(dictionary.finished());
  ASSERT_EQ(header.bytes(), 8192U);
  EXPECT_EQ(header.number(26), 2);
  EXPECT_EQ(header.raw(512), "F68     ");  // the first word of the second page
  EXPECT_EQ(header.number(515), 69);
  for (std::size_t word = 504; word < 512; ++word) EXPECT_EQ(header.number(word), 0) << word;
}

TEST(Ovdd, MoreAtomsThanThePrecisionHasAreRefused) {
  ovf::ovdd32 single;
  for (int i = 0; i < 64; ++i) single.add_number("F", 0, true);
  EXPECT_EQ(ovtest::message_of([&] { single.add_number("G", 0, true); }),
            "The Field count exceeds the limit of single precision");
  EXPECT_EQ(single.atoms(), 64U);
  ovf::ovdd64 wide;
  wide.add_text("T", std::string(255 * 4, 't'), true);
  EXPECT_EQ(ovtest::message_of([&] { wide.add_text("U", "12345", true); }),
            "The Field count exceeds the limit of double precision");
  wide.add_number("LAST", 0, true);
  EXPECT_EQ(wide.atoms(), 256U);
}

}  // namespace
