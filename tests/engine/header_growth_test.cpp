// Adding a field whose entries need another header page: the record pages move behind it.
#include <gtest/gtest.h>

#include "field_files.h"

namespace {

using ovtest::added_number;
using ovtest::atom;
using ovtest::bytes;
using ovtest::call;
using ovtest::double_words;
using ovtest::message_of;
using ovtest::numbers_table;
using ovtest::utf8;

class HeaderGrowth : public ::testing::Test {
 protected:
  /// `stored` numbers, then implicit ones up to `count` atoms.
  static std::vector<atom> atoms(int stored, int count) {
    std::vector<atom> all = ovtest::stored_numbers(stored);
    for (int i = stored + 1; i <= count; ++i) all.push_back(added_number("I" + std::to_string(i), i));
    return all;
  }
  static std::vector<atom> with(std::vector<atom> all, atom more) {
    all.push_back(std::move(more));
    return all;
  }
  std::vector<std::string> names() const { return ovtest::names_in(files_.path().parent_path()); }
  static std::vector<std::string> table_alone() { return {"table.ovt"}; }

  ovtest::engine_files files_;
};

TEST_F(HeaderGrowth, From68To69AtomsByteForByte) {
  auto table = files_.open(numbers_table(atoms(68, 68), 68, 20, 1, double_words));
  EXPECT_EQ(table->addNumericField(OLESTR("GRADE"), 0.125), 68U);
  const bytes expected =
      numbers_table(with(atoms(68, 68), added_number("GRADE", 0.125)), 68, 20, 2, double_words);
  ASSERT_EQ(expected.size(), 5 * 4096U);  // 2 header pages; 7 rows a page
  EXPECT_EQ(files_.content(), expected);
  // The words that count, written out: 69 atoms, 5 pages, 6 records in the last.
  const bytes file = files_.content();
  EXPECT_EQ(ovtest::raw_word(file, 25, double_words), std::string("\0\0\0\0\0\x40\x51\x40", 8));
  EXPECT_EQ(ovtest::raw_word(file, 26, double_words), std::string("\0\0\0\0\0\0\x14\x40", 8));
  EXPECT_EQ(ovtest::raw_word(file, 27, double_words), std::string("\0\0\0\0\0\0\x18\x40", 8));
  EXPECT_EQ(ovtest::raw_word(file, 512, double_words), "GRAD    ");
  table.reset();
  EXPECT_EQ(files_.content(), expected);
  EXPECT_EQ(names(), table_alone());
}

TEST_F(HeaderGrowth, From140To141AtomsByteForByte) {
  auto table = files_.open(numbers_table(atoms(100, 140), 100, 11, 2, double_words));
  EXPECT_EQ(table->addNumericField(OLESTR("GRADE"), 0.125), 140U);
  EXPECT_EQ(files_.content(),
            numbers_table(with(atoms(100, 140), added_number("GRADE", 0.125)), 100, 11, 3, double_words));
}

TEST_F(HeaderGrowth, From212To213AtomsByteForByte) {
  auto table = files_.open(numbers_table(atoms(200, 212), 200, 7, 3, double_words));
  EXPECT_EQ(table->addNumericField(OLESTR("GRADE"), 0.125), 212U);
  EXPECT_EQ(files_.content(),
            numbers_table(with(atoms(200, 212), added_number("GRADE", 0.125)), 200, 7, 4, double_words));
}

TEST_F(HeaderGrowth, OneAtomBeforeTheBorderTheFileStaysAsLong) {
  auto table = files_.open(numbers_table(atoms(67, 67), 67, 20, 1, double_words));
  table->addNumericField(OLESTR("GRADE"), 0.125);
  EXPECT_EQ(files_.content(),
            numbers_table(with(atoms(67, 67), added_number("GRADE", 0.125)), 67, 20, 1, double_words));
}

TEST_F(HeaderGrowth, AFieldOnTheSecondPageOfTwoMovesNothing) {
  auto table = files_.open(numbers_table(atoms(80, 100), 80, 20, 2, double_words));
  table->addNumericField(OLESTR("GRADE"), 0.125);
  EXPECT_EQ(files_.content(),
            numbers_table(with(atoms(80, 100), added_number("GRADE", 0.125)), 80, 20, 2, double_words));
}

TEST_F(HeaderGrowth, ATextThatStraddlesTheBorder) {
  auto table = files_.open(numbers_table(atoms(66, 66), 66, 20, 1, double_words));
  EXPECT_EQ(table->addAlphaField(OLESTR("ZONE"), 15, OLESTR("weathered zone")), 66U);
  std::vector<atom> all = atoms(66, 66);
  ovtest::add_added_text(all, "ZONE", 4, "weathered zone");
  bytes expected = numbers_table(all, 66, 20, 2, double_words);
  ovtest::end_defaults_with_zeros(expected, 66, 4, double_words);
  EXPECT_EQ(files_.content(), expected);
  table.reset();
  table = files_.reopen();
  EXPECT_EQ(utf8(table->getDefaultString(66)), "weathered zone  ");
  EXPECT_EQ(table->getFieldWidth(66), 16);
}

TEST_F(HeaderGrowth, ATextMayNeedSeveralPagesAtOnce) {
  auto table = files_.open(numbers_table(atoms(10, 10), 10, 60, 1, double_words));
  table->addAlphaField(OLESTR("REMARK"), 4 * 246, OLESTR("x"));
  std::vector<atom> all = atoms(10, 10);
  ovtest::add_added_text(all, "REMARK", 246, "x");
  bytes expected = numbers_table(all, 10, 60, 4, double_words);
  ovtest::end_defaults_with_zeros(expected, 10, 246, double_words);
  EXPECT_EQ(files_.content(), expected);
}

TEST_F(HeaderGrowth, TheTableGoesOnWhereItWas) {
  // More than one segment of 100 pages.
  auto table = files_.open(numbers_table(atoms(68, 68), 68, 720, 1, double_words));
  table->goToRow(694);
  table->setDouble(0, -5);  // not flushed yet
  table->addNumericField(OLESTR("GRADE"), 0.125);
  EXPECT_EQ(table->getRowCount(), 720U);
  EXPECT_EQ(table->currentRow(), 694U);
  EXPECT_EQ(table->getDouble(0), -5);
  EXPECT_EQ(table->getDouble(67), 694068);
  EXPECT_EQ(table->getDouble(68), 0.125);
  for (int row = 695; row <= 720; ++row) {
    table->nextRow();
    ASSERT_EQ(table->getDouble(1), 1000.0 * row + 2);
  }
  table->addRow();
  table->setDouble(0, 7);
  EXPECT_EQ(table->facts().header_pages, 2U);
  EXPECT_EQ(table->facts().pages, 2U + 103U);
  table.reset();
  table = files_.reopen();
  EXPECT_EQ(table->getRowCount(), 721U);
  for (const std::uint64_t row : {1U, 100U, 693U, 720U}) {
    table->goToRow(row);
    EXPECT_EQ(table->getDouble(67), 1000.0 * static_cast<double>(row) + 68);
  }
  table->goToRow(694);
  EXPECT_EQ(table->getDouble(0), -5);
  table->goToRow(721);
  EXPECT_EQ(table->getDouble(0), 7);
}

TEST_F(HeaderGrowth, ATableWithoutRowsGetsThemAfterwards) {
  auto table = files_.open(numbers_table(atoms(68, 68), 68, 0, 1, double_words));
  table->addNumericField(OLESTR("GRADE"), 0.125);
  EXPECT_EQ(files_.content(),
            numbers_table(with(atoms(68, 68), added_number("GRADE", 0.125)), 68, 0, 2, double_words));
  table->addRow();
  table->setDouble(0, 3);
  table.reset();
  table = files_.reopen();
  EXPECT_EQ(table->getRowCount(), 1U);
  table->firstRow();
  EXPECT_EQ(table->getDouble(0), 3);
  EXPECT_EQ(table->getDouble(1), 2.5);
}

TEST_F(HeaderGrowth, ANewFileMayCountAPageTooManyAndStillHasNoRows) {
  bytes before = numbers_table(atoms(68, 68), 68, 0, 1, double_words);
  ovtest::put_number(before, 26, 2, double_words);
  auto table = files_.open(before);
  table->addNumericField(OLESTR("GRADE"), 0.125);
  table->addRow();
  table->setDouble(0, 3);
  table.reset();
  table = files_.reopen();
  EXPECT_EQ(table->getRowCount(), 1U);
  table->firstRow();
  EXPECT_EQ(table->getDouble(0), 3);
}

TEST_F(HeaderGrowth, RowsThatTheHeaderDoesNotCountMoveAlong) {
  bytes before = numbers_table(atoms(68, 68), 68, 5, 1, double_words);
  ovtest::put_number(before, 26, 1, double_words);  // the header page alone
  auto table = files_.open(before);
  ASSERT_EQ(table->getRowCount(), 5U);
  table->addNumericField(OLESTR("GRADE"), 0.125);
  table.reset();
  table = files_.reopen();
  EXPECT_EQ(table->getRowCount(), 5U);
  table->goToRow(5);
  EXPECT_EQ(table->getDouble(0), 5001);
}

TEST_F(HeaderGrowth, AFileThatCountsNoPagesCountsNoneAfterwards) {
  bytes before = numbers_table(atoms(68, 68), 68, 5, 1, double_words);
  ovtest::put_number(before, 26, 0, double_words);
  auto table = files_.open(before);
  ASSERT_EQ(table->getRowCount(), 0U);
  table->addNumericField(OLESTR("GRADE"), 0.125);
  table.reset();
  EXPECT_EQ(files_.reopen()->getRowCount(), 0U);
}

TEST_F(HeaderGrowth, IsRefusedWhileSomebodyElseHasTheTableOpen) {
  const bytes before = numbers_table(atoms(68, 68), 68, 20, 1, double_words);
  auto table = files_.open(before);
  auto other = files_.reopen(true);
  table->goToRow(9);
  EXPECT_EQ(message_of([&] { table->addNumericField(OLESTR("GRADE"), 0.125); }), "cannot create file");
  EXPECT_EQ(files_.content(), before);
  EXPECT_EQ(names(), table_alone());
  EXPECT_EQ(table->getFieldCount(), 68U);
  EXPECT_EQ(table->currentRow(), 9U);
  EXPECT_EQ(table->getDouble(0), 9001);
  other.reset();
  EXPECT_EQ(table->addNumericField(OLESTR("GRADE"), 0.125), 68U);
  EXPECT_EQ(files_.reopen(true)->getFieldCount(), 69U);
}

TEST_F(HeaderGrowth, IsRefusedInATableOpenedForReading) {
  const bytes before = numbers_table(atoms(68, 68), 68, 20, 1, double_words);
  const auto table = files_.open(before, true);
  table->goToRow(9);
  EXPECT_EQ(message_of([&] { table->addNumericField(OLESTR("GRADE"), 0.125); }), "cannot create file");
  EXPECT_EQ(table->getFieldCount(), 68U);
  EXPECT_EQ(table->getDouble(0), 9001);
  EXPECT_EQ(files_.content(), before);
  EXPECT_EQ(names(), table_alone());
}

TEST_F(HeaderGrowth, TheFileThatWasOpenedGrowsWhateverTheCurrentFolderIs) {
  ovtest::write_bytes(files_.path(), numbers_table(atoms(68, 68), 68, 20, 1, double_words));
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(files_.path().parent_path());
  const auto table = ovf::open_table(ovf::wide(OLESTR("table.ovt")), false);
  std::filesystem::current_path(before);
  table->addNumericField(OLESTR("GRADE"), 0.125);
  EXPECT_EQ(files_.reopen(true)->getFieldCount(), 69U);
}

TEST_F(HeaderGrowth, FieldAfterFieldUpToTheLimit) {
  auto table = files_.open(numbers_table(atoms(2, 2), 2, 600, 1, double_words));
  table->goToRow(300);
  for (int i = 3; i <= 256; ++i) {
    const ovf::wide name = ovf::wide_from_ansi("I" + std::to_string(i));
    ASSERT_EQ(table->addNumericField(name, static_cast<double>(i)), static_cast<std::uint64_t>(i - 1));
    ASSERT_EQ(table->getDouble(0), 300001);
  }
  EXPECT_EQ(message_of([&] { table->addNumericField(OLESTR("MORE"), 0.0); }),
            "The Field count exceeds the limit of double precision");
  table.reset();
  EXPECT_EQ(files_.content(), numbers_table(atoms(2, 256), 2, 600, 4, double_words));
}

}  // namespace
