// Blocks of rows beside the cursor: read many pages at a time, put behind the end, counted all at once or
// not at all.
#include <gtest/gtest.h>

#include <algorithm>

#include "field_files.h"

namespace {

using ovtest::bytes;
using ovtest::message_of;
using ovtest::numbers_table;
using ovtest::stored_numbers;
using ovtest::word_format;

/// Words of a record: rows of 3 numbers stand 169 to a page.
constexpr int record_words = 3;

class RowBlocks : public ::testing::TestWithParam<word_format> {
 protected:
  static bytes made(int rows) {
    return numbers_table(stored_numbers(record_words), record_words, rows, 1, GetParam());
  }
  void open(int rows) { table_ = files_.open(made(rows)); }
  void close() { table_.reset(); }

  /// Puts rows numbered from `first` on, with the values of `numbers_table`.
  void put(int first, int rows) {
    int row = first;
    table_->putRows(static_cast<std::uint64_t>(rows), [&row](std::byte* records, std::size_t here) {
      bytes values(here * record_words * GetParam().size);
      for (std::size_t i = 0; i < here; ++i, ++row) {
        for (std::size_t k = 0; k < record_words; ++k) {
          put_number(values, i * record_words + k, 1000.0 * row + static_cast<double>(k + 1), GetParam());
        }
      }
      std::memcpy(records, values.data(), values.size());
    });
  }
  std::vector<double> first_words(std::uint64_t first, std::uint64_t rows) {
    std::vector<double> found;
    ovf::block_buffer buffer;
    table_->readRows(first, rows, buffer, [&](const std::byte* records, std::size_t here) {
      for (std::size_t i = 0; i < here; ++i)
        found.push_back(number(records + i * record_words * GetParam().size));
    });
    return found;
  }
  /// A number out of bytes in the file's order.
  static double number(const std::byte* from) {
    const auto places = ovtest::byte_places(GetParam().order);
    if (GetParam().size == 8) {
      double value = 0;
      std::memcpy(&value, from, sizeof value);
      return value;
    }
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < 4; ++i) bits |= std::to_integer<std::uint32_t>(from[i]) << 8 * places[i];
    return static_cast<double>(std::bit_cast<float>(bits));
  }
  double here() const {
    return table_->isDouble() ? table_->getDouble(0) : static_cast<double>(table_->getFloat(0));
  }

  ovtest::engine_files files_;
  std::unique_ptr<ovf::table> table_;
};

INSTANTIATE_TEST_SUITE_P(Formats, RowBlocks, ::testing::ValuesIn(ovtest::all_formats),
                         [](const auto& each) { return ovtest::format_name(each.param); });

TEST_P(RowBlocks, AreReadOverManyPages) {
  open(16'000);
  for (const auto& [first, rows] : std::vector<std::pair<std::uint64_t, std::uint64_t>>{
           {1, 16'000}, {169, 1}, {169, 2}, {170, 169}, {15'999, 2}, {5, 0}}) {
    const std::vector<double> found = first_words(first, rows);
    ASSERT_EQ(found.size(), rows);
    for (std::size_t i = 0; i < found.size(); ++i) {
      const double expected = 1000.0 * static_cast<double>(first + i) + 1;
      ASSERT_EQ(found[i],
                static_cast<double>(GetParam().size == 4 ? static_cast<float>(expected) : expected));
    }
  }
}

TEST_P(RowBlocks, ReadWhatIsNotInTheFileYet) {
  open(400);
  table_->goToRow(200);
  table_->setValue(0, ovf::variant(7.0));
  const std::vector<double> found = first_words(199, 3);
  EXPECT_EQ(found, (std::vector<double>{199'001, 7, 201'001}));
  EXPECT_EQ(table_->currentRow(), 200U);
}

TEST_P(RowBlocks, CountWhenTheyAreCommitted) {
  for (const auto& [before, added] : std::vector<std::pair<int, int>>{
           {0, 1}, {0, 169}, {1, 168}, {1, 169}, {168, 1}, {169, 1}, {338, 170}, {20, 15'000}, {0, 15'000}}) {
    SCOPED_TRACE(std::to_string(before) + " and " + std::to_string(added));
    open(before);
    table_->beginRows();
    put(before + 1, added / 3);
    put(before + 1 + added / 3, added - added / 3);
    EXPECT_EQ(table_->getRowCount(), static_cast<std::uint64_t>(before));
    table_->commitRows();
    EXPECT_EQ(table_->getRowCount(), static_cast<std::uint64_t>(before + added));
    close();
    EXPECT_TRUE(files_.content() == made(before + added));
  }
}

TEST_P(RowBlocks, HaveTheDefaultsWhereNothingIsPut) {
  open(1);
  table_->beginRows();
  table_->putRows(1, [](std::byte*, std::size_t) {});
  table_->commitRows();
  close();
  bytes expected = made(2);
  for (std::size_t k = 1; k <= record_words; ++k) {
    put_number(expected, ovtest::record_word(1, 1, record_words, k), static_cast<double>(k) + 0.5,
               GetParam());
  }
  EXPECT_TRUE(files_.content() == expected);
}

TEST_P(RowBlocks, DoNotTouchTheCountedPagesBefore) {
  open(400);
  table_->beginRows();
  put(401, 30'000);
  table_->flush();
  bytes now = files_.content();
  EXPECT_GT(now.size(), made(400).size());
  now.resize(made(400).size());
  EXPECT_TRUE(now == made(400));
}

TEST_P(RowBlocks, GivenUpLeaveTheFileAsItWas) {
  for (const int before : {0, 20, 169}) {
    for (const int added : {0, 10, 30'000}) {
      open(before);
      table_->beginRows();
      put(before + 1, added);
      table_->giveUpRows();
      EXPECT_TRUE(files_.content() == made(before)) << before << ", " << added;
      table_->giveUpRows();
      EXPECT_EQ(table_->getRowCount(), static_cast<std::uint64_t>(before));
      close();
      EXPECT_TRUE(files_.content() == made(before)) << before << ", " << added;
    }
  }
}

TEST_P(RowBlocks, AreGivenUpWhenTheTableGoes) {
  open(20);
  table_->beginRows();
  put(21, 30'000);
  close();
  EXPECT_TRUE(files_.content() == made(20));
}

TEST_P(RowBlocks, AreGivenUpByTheNextOnes) {
  open(20);
  table_->beginRows();
  put(500, 30'000);
  table_->beginRows();
  put(21, 3);
  table_->commitRows();
  close();
  EXPECT_TRUE(files_.content() == made(23));
}

TEST_P(RowBlocks, AreGivenUpByEveryChange) {
  using change = std::function<void(ovf::table&)>;
  const std::vector<std::pair<const char*, change>> changes = {
      {"value", [](ovf::table& table) { table.setValue(1, ovf::variant(5.0)); }},
      {"record", [](ovf::table& table) { table.writeRecord(9, bytes(record_words * 8).data()); }},
      {"row", [](ovf::table& table) { table.addRow(); }},
      {"cut", [](ovf::table& table) { table.onSetRowCount(19); }},
      {"default", [](ovf::table& table) { table.setDefaultDouble(0, 3); }},
      {"name", [](ovf::table& table) { table.renameField(0, OLESTR("FIRST")); }},
      {"field", [](ovf::table& table) { table.addNumericField(OLESTR("NEW"), 1.5); }},
  };
  for (const auto& [name, make] : changes) {
    SCOPED_TRACE(name);
    open(20);
    table_->goToRow(9);
    make(*table_);
    close();
    const bytes expected = files_.content();
    open(20);
    table_->goToRow(9);
    table_->beginRows();
    put(21, 30'000);
    make(*table_);
    const std::uint64_t rows = table_->getRowCount();
    EXPECT_EQ(message_of([&] { put(21, 1); }), "AddRow failed, the rows that were being added were given up");
    EXPECT_EQ(message_of([&] { table_->commitRows(); }),
              "AddRow failed, the rows that were being added were given up");
    EXPECT_EQ(table_->getRowCount(), rows);
    close();
    EXPECT_TRUE(files_.content() == expected);
  }
}

TEST_P(RowBlocks, LeaveTheCursorWhereItIs) {
  open(400);
  table_->goToRow(390);
  table_->beginRows();
  put(401, 30'000);
  EXPECT_EQ(here(), 390'001);
  table_->goToRow(3);
  table_->goToRow(391);
  EXPECT_EQ(here(), 391'001);
  table_->commitRows();
  EXPECT_EQ(here(), 391'001);
  table_->setValue(0, ovf::variant(5.0));
  table_->nextRow();
  EXPECT_EQ(here(), 392'001);
  close();
  bytes expected = made(30'400);
  put_number(expected, ovtest::record_word(3, 391 - 2 * 169 - 1, record_words, 1), 5, GetParam());
  EXPECT_TRUE(files_.content() == expected);
}

TEST_P(RowBlocks, AfterRowsThatWereGivenUpTheTableGoesOn) {
  open(20);
  table_->goToRow(20);
  table_->beginRows();
  put(500, 30'000);
  table_->goToRow(1);
  table_->giveUpRows();
  for (int row = 21; row <= 400; ++row) {
    table_->addRow();
    for (int k = 0; k < record_words; ++k) {
      table_->setValue(static_cast<std::uint64_t>(k), ovf::variant(1000.0 * row + k + 1));
    }
  }
  close();
  EXPECT_TRUE(files_.content() == made(400));
}

TEST_P(RowBlocks, BytesThatNobodyCountsDoNotMakeTheFileAnotherSize) {
  bytes longer = made(20);
  longer.resize(longer.size() + 3 * 512 * GetParam().size + 5, 0xEE);
  table_ = files_.open(longer);
  table_->beginRows();
  put(21, 30'000);
  table_->giveUpRows();
  close();
  EXPECT_EQ(files_.content().size(), longer.size());
  table_ = files_.open(longer);
  table_->beginRows();
  put(21, 200);
  table_->commitRows();
  close();
  bytes expected = made(220);
  if (GetParam().size == 4) {
    expected.insert(expected.end(), longer.begin() + static_cast<std::ptrdiff_t>(expected.size()),
                    longer.end());
  }
  EXPECT_TRUE(files_.content() == expected);
}

TEST_P(RowBlocks, WithoutABeginningAreRefused) {
  open(2);
  EXPECT_EQ(message_of([&] { put(3, 1); }), "AddRow failed, the rows that were being added were given up");
  EXPECT_EQ(message_of([&] { table_->commitRows(); }),
            "AddRow failed, the rows that were being added were given up");
  table_->beginRows();
  table_->commitRows();
  EXPECT_EQ(table_->getRowCount(), 2U);
}

TEST_P(RowBlocks, BeyondTheRoomAreRefusedAsAddedRowsAre) {
  open(2);
  const bool is_double = GetParam().size == 8;
  // 169 records to a page, and 2^24 pages in single precision: the number of rows is the closer limit.
  EXPECT_EQ(table_->roomForRows(), 2'147'483'645U);
  table_->beginRows();
  put(3, 1);
  EXPECT_EQ(message_of([&] { put(4, 2'147'483'645); }), "ov_size_t_2_int");
  table_->giveUpRows();
  // Records of 64 words: 7 to a page.
  table_ = files_.open(numbers_table(stored_numbers(64), 64, 2, 1, GetParam()));
  constexpr std::uint64_t pages = (std::uint64_t{1} << 24) - 1;
  EXPECT_EQ(table_->roomForRows(), is_double ? 2'147'483'645U : 7 * pages - 2);
  table_->beginRows();
  EXPECT_EQ(message_of([&] {
              table_->putRows(table_->roomForRows() + 1, [](std::byte*, std::size_t) { throw 1; });
            }),
            "ov_size_t_2_int");
  table_->giveUpRows();
  close();
  EXPECT_TRUE(files_.content() == numbers_table(stored_numbers(64), 64, 2, 1, GetParam()));
}

TEST_P(RowBlocks, WhoseFillerFailsCanBeGivenUp) {
  open(20);
  table_->beginRows();
  put(21, 30'000);
  EXPECT_THROW(table_->putRows(10, [](std::byte*, std::size_t) { throw std::bad_alloc(); }), std::bad_alloc);
  table_->giveUpRows();
  EXPECT_TRUE(files_.content() == made(20));
}

}  // namespace
