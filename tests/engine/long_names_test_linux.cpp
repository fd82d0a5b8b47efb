// Names of up to 24 characters. Whether they are allowed is decided once per process, so every test here
// runs its work in a process of its own; it has settings of its own as well.
#include <gtest/gtest.h>

#include "engine/long_field_names.h"
#include "field_files.h"

namespace {

using ovtest::atom;
using ovtest::bytes;
using ovtest::double_words;
using ovtest::message_of;
using ovtest::utf8;

constexpr const OLECHAR* longest = OLESTR("ALPHABETICALFIELDNAMEXYZ");  // 24 characters

/// Ends the process with the result of the expectations so far.
[[noreturn]] void finish() { std::exit(testing::Test::HasFailure() ? 1 : 0); }

class LongNames : public ::testing::Test {
 protected:
  LongNames() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
  static void allow_long_names() {
    ovf::set_long_names_master(true);
    ASSERT_EQ(ovf::field_name_limit(), 24U);
  }
  static bytes table(const std::vector<atom>& atoms) { return ovtest::make_header({}, atoms, double_words); }

  static void add_and_rename();
  static void check_limits();
};

void LongNames::add_and_rename() {
  allow_long_names();
  ovtest::engine_files files;
  std::vector<atom> atoms = {ovtest::number_atom("DEPTH", 1)};
  auto opened = files.open(table(atoms));
  EXPECT_EQ(opened->addNumericField(longest, 0.5), 1U);
  opened->addAlphaField(OLESTR("NINECHARS"), 5, OLESTR("ore"));
  atoms.push_back(ovtest::added_number("ALPHABETICALFIELDNAMEXYZ", 0.5));
  ovtest::add_added_text(atoms, "NINECHARS", 2, "ore");
  bytes expected = table(atoms);
  ovtest::end_defaults_with_zeros(expected, 2, 2, double_words);
  EXPECT_EQ(files.content(), expected);
  const std::string words[] = {"ALPHICAL", "ABETFIEL", "N   LONG"};
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(ovtest::raw_word(expected, 35 + i, double_words), words[i]);
  EXPECT_EQ(ovtest::raw_word(expected, 40, double_words), "DNAMEXYZ");

  opened->renameField(0, OLESTR("LENGTH_OF_SAMPLE"));
  opened->renameField(1, OLESTR("SHORT"));
  opened->renameField(2, longest);
  atoms[0].name = "LENGTH_OF_SAMPLE";
  atoms[1].name = "SHORT";
  atoms[2].name = atoms[3].name = "ALPHABETICALFIELDNAMEXYZ";
  expected = table(atoms);
  ovtest::end_defaults_with_zeros(expected, 2, 2, double_words);
  EXPECT_EQ(files.content(), expected);
  opened = files.reopen();
  EXPECT_EQ(utf8(opened->getFieldName(0)), "LENGTH_OF_SAMPLE");
  EXPECT_EQ(opened->getFieldIndex(longest), 2U);
}

void LongNames::check_limits() {
  allow_long_names();
  ovtest::engine_files files;
  const bytes before = table({ovtest::number_atom("DEPTH", 1)});
  auto opened = files.open(before);
  const ovf::wide too_long = ovf::wide(longest) + OLESTR("A");
  EXPECT_EQ(message_of([&] { opened->addNumericField(too_long, 1.0); }), "field name too long");
  EXPECT_EQ(message_of([&] { opened->addAlphaField(too_long, 4, {}); }), "field name too long");
  EXPECT_EQ(message_of([&] { opened->renameField(0, too_long); }), "field name is too long");
  EXPECT_EQ(files.content(), before);
  // Single precision knows no long names.
  opened = files.open(ovtest::make_header({}, {ovtest::number_atom("DEPTH", 1)}, ovtest::single_words));
  EXPECT_EQ(message_of([&] { opened->addNumericField(OLESTR("NINECHARS"), 1.0); }),
            "field name exceeds 8 characters");
  EXPECT_EQ(message_of([&] { opened->renameField(0, OLESTR("NINECHARS")); }),
            "field name exceeds 8 characters");
}

TEST_F(LongNames, TwentyFourCharactersAreAddedAndRenamedByteForByte) {
  EXPECT_EXIT((add_and_rename(), finish()), ::testing::ExitedWithCode(0), "");
}

TEST_F(LongNames, TwentyFiveAreRefusedAndSinglePrecisionKeepsItsEight) {
  EXPECT_EXIT((check_limits(), finish()), ::testing::ExitedWithCode(0), "");
}

}  // namespace
