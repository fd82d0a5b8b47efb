#include <gtest/gtest.h>

#include "engine_files.h"

namespace {

using ovtest::bytes;
using ovtest::call;
using ovtest::double_words;
using ovtest::hole_table;
using ovtest::message_of;
using ovtest::single_words;
using ovtest::utf8;
using ovtest::with_failing_code;

constexpr int per_page = 169;

class Rows : public ::testing::TestWithParam<ovtest::word_format> {
 protected:
  /// A table of n rows made by appending to an empty one gets the same bytes as one written at once,
  /// but for what text words hold behind their characters.
  void fill(ovf::table& table, int from, int to) {
    for (int row = from; row <= to; ++row) {
      table.addRow();
      table.setDouble(1, row + 0.25);
    }
  }
  /// Rows as `fill` leaves them: the default text in BHID.
  bytes appended(int rows) {
    bytes file = hole_table(rows, GetParam());
    for (int row = 0; row < rows; ++row) {
      const auto page = static_cast<std::size_t>(1 + row / per_page);
      ovtest::put_text(file, ovtest::record_word(page, static_cast<std::size_t>(row % per_page), 3, 1), 2,
                       "none", GetParam());
    }
    return file;
  }
  std::size_t page_bytes() const { return 512 * GetParam().size; }

  ovtest::engine_files files_;
};

TEST_P(Rows, TheCursorStopsAtBothEnds) {
  const auto table = files_.open(hole_table(3, GetParam()));
  EXPECT_EQ(table->getRowCount(), 3U);
  EXPECT_EQ(table->currentRow(), 0U);
  table->firstRow();
  EXPECT_EQ(table->currentRow(), 1U);
  EXPECT_EQ(message_of([&] { table->previousRow(); }), "index out of bounds: row before beginning of table");
  table->lastRow();
  EXPECT_EQ(table->currentRow(), 3U);
  EXPECT_EQ(message_of([&] { table->nextRow(); }), "index out of bounds: row past the end of the table");
  EXPECT_EQ(table->currentRow(), 3U);
  EXPECT_EQ(table->getDouble(1), 3.25);
  table->previousRow();
  EXPECT_EQ(table->getDouble(1), 2.25);
  table->goToRow(3);
  EXPECT_EQ(message_of([&] { table->goToRow(0); }), "index out of bounds");
  EXPECT_EQ(message_of([&] { table->goToRow(4); }), "index out of bounds");
}

TEST_P(Rows, AWalkOverPageBordersSeesEveryRow) {
  const auto table = files_.open(hole_table(2 * per_page + 5, GetParam()));
  table->firstRow();
  for (int row = 1; row <= 2 * per_page + 5; ++row) {
    ASSERT_EQ(table->getDouble(1), row + 0.25) << row;
    if (row < 2 * per_page + 5) table->nextRow();
  }
  for (int row = 2 * per_page + 5; row > 1; --row) {
    ASSERT_EQ(table->getDouble(1), row + 0.25) << row;
    table->previousRow();
  }
}

TEST_P(Rows, RowCountsAtThePageBorders) {
  for (const int rows : {0, 1, per_page - 1, per_page, per_page + 1, 2 * per_page}) {
    EXPECT_EQ(files_.open(hole_table(rows, GetParam()))->getRowCount(), static_cast<std::uint64_t>(rows));
  }
}

TEST_P(Rows, AppendedRowsHoldDefaultsAndReachTheFileByteForByte) {
  for (const int rows : {1, per_page - 1, per_page, per_page + 1, 3 * per_page + 2}) {
    auto table = files_.open(hole_table(0, GetParam()));
    fill(*table, 1, rows);
    EXPECT_EQ(table->getRowCount(), static_cast<std::uint64_t>(rows));
    EXPECT_EQ(table->currentRow(), static_cast<std::uint64_t>(rows));
    EXPECT_EQ(utf8(table->getString(0)), "none    ");
    table.reset();
    EXPECT_EQ(files_.content(), appended(rows)) << rows;
  }
}

TEST_P(Rows, AppendingGoesOnWhereAFileEnds) {
  files_.open(hole_table(0, GetParam()));
  for (int row = 1; row <= per_page + 3; ++row) {
    auto table = files_.reopen();
    fill(*table, row, row);
  }
  EXPECT_EQ(files_.content(), appended(per_page + 3));
}

TEST_P(Rows, ATableWithoutStoredFieldsHasNoRowsAndTakesNone) {
  ovtest::header_words words;
  words.pages = 2;
  words.records_in_last_page = 5;
  bytes file = ovtest::make_header(words, {ovtest::number_atom("DENSITY", 0, 2.5)}, GetParam());
  ovtest::add_page(file, GetParam());
  auto table = files_.open(file);
  EXPECT_EQ(table->getRowCount(), 0U);
  EXPECT_EQ(message_of([&] { table->addRow(); }), "AddRow failed, the table has no stored fields");
  table.reset();
  EXPECT_EQ(files_.content(), file);
}

TEST_P(Rows, ReducingToMoreOrToTheSameWritesNothing) {
  const bytes before = hole_table(10, GetParam());
  const auto table = files_.open(before);
  const ovtest::failing_files watched;
  EXPECT_FALSE(table->onSetRowCount(11));
  EXPECT_TRUE(table->onSetRowCount(10));
  EXPECT_EQ(watched.count(call::write), 0);
  EXPECT_EQ(files_.content(), before);
}

TEST_P(Rows, ReducingCutsTheFileAndKeepsTheRow) {
  auto table = files_.open(hole_table(2 * per_page + 5, GetParam()));
  table->goToRow(per_page);
  EXPECT_TRUE(table->onSetRowCount(per_page + 2));
  EXPECT_EQ(table->getRowCount(), static_cast<std::uint64_t>(per_page + 2));
  EXPECT_EQ(table->currentRow(), static_cast<std::uint64_t>(per_page));
  EXPECT_EQ(table->getDouble(1), per_page + 0.25);
  table->lastRow();
  EXPECT_TRUE(table->onSetRowCount(7));
  EXPECT_EQ(table->currentRow(), 7U);
  EXPECT_EQ(table->getDouble(1), 7.25);
  table.reset();
  // The rows that went are still in the bytes of the page behind the last record.
  bytes expected = hole_table(per_page, GetParam());
  ovtest::put_number(expected, 27, 7, GetParam());
  EXPECT_EQ(files_.content(), expected);
}

TEST_P(Rows, ReducingToAMultipleOfAPageLeavesAnEmptyOne) {
  auto table = files_.open(hole_table(2 * per_page + 1, GetParam()));
  EXPECT_TRUE(table->onSetRowCount(per_page));
  EXPECT_EQ(table->getRowCount(), static_cast<std::uint64_t>(per_page));
  table.reset();
  bytes expected = hole_table(2 * per_page, GetParam());
  ovtest::put_number(expected, 26, 3, GetParam());
  ovtest::put_number(expected, 27, 0, GetParam());
  EXPECT_EQ(files_.content(), expected);
  EXPECT_EQ(files_.reopen()->getRowCount(), static_cast<std::uint64_t>(per_page));
}

TEST_P(Rows, ReducingToNothingAndAppendingAgain) {
  auto table = files_.open(hole_table(5, GetParam()));
  table->firstRow();
  EXPECT_TRUE(table->onSetRowCount(0));
  EXPECT_EQ(table->getRowCount(), 0U);
  EXPECT_EQ(table->currentRow(), 0U);
  EXPECT_EQ(files_.content().size(), 2 * page_bytes());
  fill(*table, 1, 3);
  table.reset();
  const auto again = files_.reopen();
  EXPECT_EQ(again->getRowCount(), 3U);
  again->lastRow();
  EXPECT_EQ(again->getDouble(1), 3.25);
}

TEST_P(Rows, AnEndThatCannotBeSetIsReported) {
  const auto table = files_.open(hole_table(3 * per_page, GetParam()));
  ovtest::failing_files failing;
  const auto reopened = files_.reopen();
  const ovtest::debug_listener debug;
  failing.fail_nth(call::set_end, 1);
  const std::string words =
      with_failing_code("OvFile Error: onSetRowCount failed to set the end of the file.");
  EXPECT_EQ(message_of([&] { reopened->onSetRowCount(1); }), words);
  EXPECT_TRUE(debug.heard(words));
  // Spare bytes stay, and the table has the rows that it was to have.
  EXPECT_EQ(files_.reopen(true)->getRowCount(), 1U);
}

TEST_P(Rows, ADiskThatFillsUpLeavesTheRowsThatWereThere) {
  ovtest::failing_files failing;
  auto table = files_.open(hole_table(per_page, GetParam()));
  table->lastRow();
  failing.fail_nth(call::write, 1);
  EXPECT_NE(message_of([&] { table->addRow(); }), "");
  EXPECT_EQ(table->getRowCount(), static_cast<std::uint64_t>(per_page));
  EXPECT_EQ(table->getDouble(1), per_page + 0.25);
  table->addRow();
  table->setDouble(1, per_page + 1.25);
  table.reset();
  EXPECT_EQ(files_.reopen()->getRowCount(), static_cast<std::uint64_t>(per_page + 1));
}

TEST_P(Rows, ARowThatCannotBeReadSaysSoUntilTheCursorMoves) {
  ovtest::failing_files failing;
  const auto table = files_.open(hole_table(3, GetParam()));
  failing.fail_nth(call::read, 1);
  const std::string words = with_failing_code("OvFile Error: cache failed to read file.");
  EXPECT_EQ(message_of([&] { table->firstRow(); }), words);
  EXPECT_EQ(message_of([&] { table->getDouble(1); }), words);
  EXPECT_EQ(message_of([&] { table->setDouble(1, 1); }), words);
  table->goToRow(2);
  EXPECT_EQ(table->getDouble(1), 2.25);
}

TEST_P(Rows, RowsAreWrittenBeforeTheHeaderThatPromisesThem) {
  ovtest::failing_files failing;
  auto table = files_.open(hole_table(0, GetParam()));
  fill(*table, 1, 5);
  failing.fail_nth(call::write, 1);
  EXPECT_NE(message_of([&] { table->flush(); }), "");
  EXPECT_EQ(files_.reopen(true)->getRowCount(), 0U);
  table->flush();
  EXPECT_EQ(files_.reopen(true)->getRowCount(), 5U);
}

TEST_P(Rows, AFlushThatFailsKeepsWhatWasFlushedBefore) {
  ovtest::failing_files failing;
  auto table = files_.open(hole_table(3, GetParam()));
  table->firstRow();
  table->setDouble(1, 10);
  table->flush();
  table->setDouble(1, 20);
  failing.fail_all(call::write);
  EXPECT_EQ(message_of([&] { table->flush(); }),
            with_failing_code("OvFile Error: doFlush failed to write an entire page."));
  table.reset();
  failing.fail_nothing();
  bytes expected = hole_table(3, GetParam());
  ovtest::put_number(expected, ovtest::record_word(1, 0, 3, 3), 10, GetParam());
  EXPECT_EQ(files_.content(), expected);
}

INSTANTIATE_TEST_SUITE_P(BothPrecisions, Rows, ::testing::Values(single_words, double_words),
                         [](const auto& each) { return each.param.size == 4 ? "single" : "double"; });

TEST(RowCount, APageCountThatSinglePrecisionCannotCountIsRefused) {
  // 2^24 pages, 3 words a record: the file need not be there for the count to be known.
  bytes file = hole_table(0, single_words);
  std::vector<ovtest::atom> wide_record;
  ovtest::add_text_atoms(wide_record, "T", 64, 1);
  ovtest::header_words words;
  words.pages = 16777216;
  words.records_in_last_page = 7;
  file = ovtest::make_header(words, wide_record, single_words);
  ovtest::engine_files files;
  const auto table = files.open(file);
  // 7 records fill a page: a row less has room in the last one, which must be there for it.
  EXPECT_EQ(message_of([&] { table->addRow(); }), "ov_size_t_2_int");
}

TEST(RowCount, PagesBeyondAHostsIntegerAreRefusedInDoublePrecision) {
  // A record of 256 words fills a page, and the header has 4.
  std::vector<ovtest::atom> wide_record;
  ovtest::add_text_atoms(wide_record, "T", 256, 1);
  ovtest::header_words words;
  words.pages = 2147483647;
  words.records_in_last_page = 1;
  ovtest::engine_files files;
  const auto table = files.open(ovtest::make_header(words, wide_record, double_words));
  EXPECT_EQ(table->getRowCount(), 2147483643U);
  EXPECT_EQ(message_of([&] { table->addRow(); }), "ov_size_t_2_int");
}

TEST(RowCount, APageOfRowsThatTheHeaderDoesNotCountIsKeptWhenRowsAreAdded) {
  for (const ovtest::word_format format : {single_words, double_words}) {
    bytes file = hole_table(3, format);
    ovtest::put_number(file, 26, 1, format);  // the header page alone
    ovtest::engine_files files;
    auto table = files.open(file);
    EXPECT_EQ(table->getRowCount(), 3U);
    table->addRow();
    table.reset();
    table = files.reopen();
    EXPECT_EQ(table->getRowCount(), 4U);
    table->goToRow(3);
    EXPECT_EQ(table->getDouble(1), 3.25);
  }
}

TEST(RowCount, AFileShorterThanItsHeaderSaysDoesNotGrowByLosingRows) {
  bytes file = hole_table(3, single_words);
  ovtest::put_number(file, 26, 5000, single_words);
  ovtest::engine_files files;
  auto table = files.open(file);
  EXPECT_TRUE(table->onSetRowCount(50000));
  table.reset();
  EXPECT_EQ(files.content().size(), 2 * 2048U);
}

TEST(RowCount, WordTwentySixOfANewDoublePrecisionFileMayCountAPageTooMany) {
  bytes file = hole_table(0, double_words);
  ovtest::put_number(file, 26, 2, double_words);
  ovtest::engine_files files;
  auto table = files.open(file);
  EXPECT_EQ(table->getRowCount(), 0U);
  table->addRow();
  table.reset();
  EXPECT_EQ(files.content().size(), 2 * 4096U);
  EXPECT_EQ(files.reopen()->getRowCount(), 1U);
}

TEST(RowCount, WithoutPagesThereAreNoRowsAndAppendingBeginsBehindTheHeader) {
  bytes file = hole_table(0, single_words);
  ovtest::put_number(file, 26, 0, single_words);
  ovtest::engine_files files;
  auto table = files.open(file);
  EXPECT_FALSE(table->hasPages());
  EXPECT_EQ(table->getRowCount(), 0U);
  table->addRow();
  table.reset();
  const auto again = files.reopen();
  EXPECT_TRUE(again->hasPages());
  EXPECT_EQ(again->getRowCount(), 1U);
}

}  // namespace
