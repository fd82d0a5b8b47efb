// Fields of an open table get other names.
#include <gtest/gtest.h>

#include "field_files.h"

namespace {

using ovtest::atom;
using ovtest::bytes;
using ovtest::double_words;
using ovtest::utf8;

class RenamedFields : public ::testing::TestWithParam<ovtest::word_format> {
 protected:
  /// The holes with other names for some of their atoms.
  bytes renamed(const std::vector<std::pair<std::size_t, atom>>& entries) const {
    bytes file = ovtest::hole_table(3, GetParam());
    for (const auto& [index, entry] : entries) ovtest::put_atom(file, index, entry, GetParam());
    return file;
  }

  ovtest::engine_files files_;
};

TEST_P(RenamedFields, NumbersAndTextsByteForByte) {
  auto table = files_.open(ovtest::hole_table(3, GetParam()));
  table->renameField(1, OLESTR("FROM_TO1"));
  bytes expected = renamed({{2, ovtest::number_atom("FROM_TO1", 3, -1)}});
  EXPECT_EQ(files_.content(), expected);
  table->renameField(0, OLESTR("HOLE"));
  std::vector<atom> text;
  ovtest::add_text_atoms(text, "HOLE", 2, 1, "none");
  ovtest::put_atom(expected, 0, text[0], GetParam());
  ovtest::put_atom(expected, 1, text[1], GetParam());
  EXPECT_EQ(files_.content(), expected);
  table.reset();
  EXPECT_EQ(files_.content(), expected);
}

TEST_P(RenamedFields, TheNewNameIsFoundAndTheOldOneIsFree) {
  auto table = files_.open(ovtest::hole_table(3, GetParam()));
  table->goToRow(2);
  table->renameField(1, OLESTR("LENGTH"));
  EXPECT_EQ(table->getFieldIndex(OLESTR("LENGTH")), 1U);
  EXPECT_EQ(ovtest::message_of([&] { table->getFieldIndex(OLESTR("DEPTH")); }), "unknown field name...");
  EXPECT_EQ(table->getFieldTypeByName(OLESTR("LENGTH")), ovf::field_kind::numeric);
  EXPECT_EQ(utf8(table->getFieldName(1)), "LENGTH");
  EXPECT_EQ(table->currentRow(), 2U);
  EXPECT_EQ(utf8(table->getString(0)), "H2      ");
  table->renameField(2, OLESTR("DEPTH"));
  EXPECT_EQ(table->getFieldIndex(OLESTR("DEPTH")), 2U);
  const auto again = files_.reopen(true);
  EXPECT_EQ(utf8(again->getFieldName(1)), "LENGTH");
  EXPECT_EQ(utf8(again->getFieldName(2)), "DEPTH");
  EXPECT_EQ(again->getFieldCount(), 4U);
  EXPECT_EQ(again->getRowCount(), 3U);
}

TEST_P(RenamedFields, OfTwoFieldsOfOneNameTheOtherIsFoundAfterwards) {
  const auto table = files_.open(ovtest::make_header(
      {}, {ovtest::number_atom("SAME", 1), ovtest::number_atom("SAME", 2), ovtest::number_atom("Z", 3)},
      GetParam()));
  EXPECT_EQ(table->getFieldIndex(OLESTR("SAME")), 0U);
  table->renameField(0, OLESTR("FIRST"));
  EXPECT_EQ(table->getFieldIndex(OLESTR("SAME")), 1U);
  EXPECT_EQ(table->getFieldIndex(OLESTR("FIRST")), 0U);
  EXPECT_EQ(files_.reopen(true)->getFieldIndex(OLESTR("SAME")), 1U);
}

INSTANTIATE_TEST_SUITE_P(Formats, RenamedFields, ::testing::ValuesIn(ovtest::all_formats),
                         [](const auto& each) { return ovtest::format_name(each.param); });

TEST(RenamedField, ALongNameLosesItsMarkAndItsRest) {
  ovtest::engine_files files;
  std::vector<atom> atoms = {ovtest::number_atom("ALPHABETICALFIELDNAMEXYZ", 1)};
  ovtest::add_text_atoms(atoms, "NINECHARS", 2, 2, "text");
  auto table = files.open(ovtest::make_header({}, atoms, double_words));
  ASSERT_EQ(utf8(table->getFieldName(0)), "ALPHABETICALFIELDNAMEXYZ");
  table->renameField(0, OLESTR("SHORT"));
  table->renameField(1, OLESTR("EIGHTCHR"));
  atoms[0].name = "SHORT";
  atoms[1].name = atoms[2].name = "EIGHTCHR";
  EXPECT_EQ(files.content(), ovtest::make_header({}, atoms, double_words));
  // The marks, written out.
  EXPECT_EQ(ovtest::raw_word(files.content(), 30, double_words), std::string("N   \0\0\0\0", 8));
  EXPECT_EQ(ovtest::raw_word(files.content(), 33, double_words), std::string(8, '\0'));
}

class StraddlingText : public ::testing::Test {
 protected:
  /// 66 numbers, then a text of 4 words: two of its entries stand on either header page.
  static std::vector<atom> atoms(const std::string& name) {
    std::vector<atom> all = ovtest::stored_numbers(66);
    ovtest::add_text_atoms(all, name, 4, 0, "weathered zone");
    return all;
  }
  static bytes file(const std::string& name) {
    return ovtest::numbers_table(atoms(name), 66, 20, 2, double_words);
  }

  ovtest::engine_files files_;
};

TEST_F(StraddlingText, IsRenamedOnBothPages) {
  auto table = files_.open(file("ZONE"));
  ASSERT_EQ(table->getFieldCount(), 67U);
  table->goToRow(15);
  table->renameField(66, OLESTR("DOMAIN"));
  EXPECT_EQ(files_.content(), file("DOMAIN"));
  EXPECT_EQ(table->currentRow(), 15U);
  EXPECT_EQ(table->getDouble(3), 15004);
  EXPECT_EQ(utf8(table->getString(66)), "weathered zone  ");
  table->setDouble(3, 1);
  table.reset();
  table = files_.reopen();
  table->goToRow(15);
  EXPECT_EQ(table->getDouble(3), 1);
  EXPECT_EQ(utf8(table->getFieldName(66)), "DOMAIN");
  EXPECT_EQ(table->getFieldCount(), 67U);
}

TEST_F(StraddlingText, KeepsItsNameWhenNoCopyCanBeMade) {
  const auto other = (files_.open(file("ZONE")), files_.reopen(true));
  const auto table = files_.reopen();
  EXPECT_EQ(ovtest::message_of([&] { table->renameField(66, OLESTR("DOMAIN")); }), "cannot create file");
  EXPECT_EQ(utf8(table->getFieldName(66)), "ZONE");
  EXPECT_EQ(files_.content(), file("ZONE"));
  EXPECT_EQ(ovtest::names_in(files_.path().parent_path()), std::vector<std::string>{"table.ovt"});
}

}  // namespace
