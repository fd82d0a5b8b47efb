// How much a stream can promise, and what becomes of promises that no table and no memory can keep.
#include <limits>

#include "stream/array_import.h"
#include "stream_host.h"

namespace ovtest {
namespace {

constexpr std::int64_t most_rows = 2'147'483'647;

class StreamLimits : public StreamHost {
 protected:
  /// Refused before anything is looked at that the stream does not have.
  void expect_no_room(made_stream& from, const std::string& words) {
    ASSERT_EQ(table_->FlushChanges(), S_OK);
    const bytes before = content();
    expect_refused(from, "Append failed, " + words);
    EXPECT_TRUE(content() == before);
  }
  static void claim(ArrowArray& batch, std::int64_t rows) {
    batch.length = rows;
    for (std::int64_t i = 0; i < batch.n_children; ++i) batch.children[i]->length = rows;
  }
};

TEST_F(StreamLimits, RowsThatHaveNoPlaceInTheTable) {
  make_holes(3);
  made_stream absent({{nothing("DEPTH", most_rows)}});
  expect_no_room(absent, "a batch has 2147483647 rows, and the table has room for 2147483644 more");
  made_stream without_columns(std::vector<made_batch>{made_batch{}});
  without_columns.bend_batch = [](ArrowArray& batch) { batch.length = most_rows; };
  expect_no_room(without_columns, "a batch has 2147483647 rows, and the table has room for 2147483644 more");
  made_stream one_too_many({{nothing("DEPTH", most_rows - 2)}});
  expect_no_room(one_too_many, "a batch has 2147483645 rows, and the table has room for 2147483644 more");
}

TEST_F(StreamLimits, ValuesOfRowsWithoutAPlaceAreNotLookedAt) {
  make_holes(0);
  made_stream texts_promised({{texts("BHID", {"a"}), numbers<double>("DEPTH", "g", {1})}});
  texts_promised.bend_batch = [](ArrowArray& batch) { claim(batch, most_rows + 1); };
  expect_no_room(texts_promised, "a batch has 2147483648 rows, and the table has room for 2147483647 more");
  made_stream nulls_promised({{numbers<double>("DEPTH", "g", {1})}});
  const std::uint8_t there = 1;
  const void* buffers[] = {&there};
  nulls_promised.bend_batch = [&](ArrowArray& batch) {
    batch.buffers = buffers;
    batch.null_count = -1;
    claim(batch, 1LL << 40);
  };
  expect_no_room(nulls_promised,
                 "a batch has 1099511627776 rows, and the table has room for 2147483647 more");
}

TEST_F(StreamLimits, RowsOfEarlierBatchesTakeRoomToo) {
  make_holes(3);
  made_stream from({{nothing("DEPTH", 50'000)}, {nothing("DEPTH", most_rows - 50'002)}});
  expect_no_room(from, "a batch has 2147433645 rows, and the table has room for 2147433644 more");
}

TEST_F(StreamLimits, PagesRunOutFirstInSinglePrecision) {
  auto schema = make_schema();
  schema->put_DoublePrecision(VARIANT_FALSE);
  for (int i = 1; i <= 64; ++i) schema->AddNumericColumn(bstr("N" + std::to_string(i)).get(), 0, 0);
  create(schema);
  made_stream from({{nothing("N1", 117'440'506)}});
  // 7 rows to a page, and 2^24 pages with the header's.
  expect_no_room(from, "a batch has 117440506 rows, and the table has room for 117440505 more");
}

TEST_F(StreamLimits, DictionariesOfWhichFewTextsAreAskedFor) {
  make_holes(0);
  // Offsets that lead nowhere belong to texts that no row has.
  auto dictionary = texts("", {"a", "b", "c"});
  dictionary.buffers[1] = bytes_of<std::int32_t>({0, 1, 99, 3});
  const auto rows_with = [&](const std::vector<std::int32_t>& indexes) {
    return with_dictionary(numbers("BHID", "i", indexes), dictionary);
  };
  EXPECT_EQ(append_batch({rows_with({0, 0})}), S_OK) << take_error_text();
  expect_refused({rows_with({0, 0, 1})},
                 "Append failed, column BHID, row 3: the text's offsets lead out of its buffer");
  expect_refused({rows_with({2})},
                 "Append failed, column BHID, row 1: the text's offsets lead out of its buffer");
  EXPECT_EQ(rows(), 2);
}

TEST_F(StreamLimits, WhatFitsTheMemoryOfA32BitSystem) {
  using ovf::fits_memory;
  EXPECT_TRUE(fits_memory<std::int32_t>(0, 64));
  EXPECT_TRUE(fits_memory<std::int32_t>(2'147'483'639, 8));
  EXPECT_FALSE(fits_memory<std::int32_t>(2'147'483'648, 8));
  EXPECT_FALSE(fits_memory<std::int32_t>(4'294'967'296, 8));
  EXPECT_TRUE(fits_memory<std::int32_t>(4'294'967'300, 1));
  EXPECT_FALSE(fits_memory<std::int32_t>(17'179'869'184, 1));
  EXPECT_FALSE(fits_memory<std::int32_t>(268'435'456, 64));
  EXPECT_TRUE(fits_memory<std::int32_t>(268'435'440, 64));
  EXPECT_TRUE(fits_memory<std::int64_t>(4'294'967'296, 64));
  EXPECT_FALSE(fits_memory<std::int64_t>(std::numeric_limits<std::int64_t>::max(), 64));
}

TEST_F(StreamLimits, PlacesBeyondEveryMemory) {
  make_holes(1);
  made_stream from({{numbers<double>("DEPTH", "g", {1})}});
  from.bend_batch = [](ArrowArray& batch) {
    batch.children[0]->offset = std::numeric_limits<std::int64_t>::max() - 5;
  };
  expect_refused(from, "Append failed, column DEPTH: its length or offset cannot be");
}

/// Lets every buffer of a batch begin at an odd place.
class odd_buffers {
 public:
  void bend(ArrowArray& batch, const made_batch& from) {
    for (std::size_t i = 0; i < from.size(); ++i) move(*batch.children[i], from[i]);
  }

 private:
  void move(ArrowArray& array, const made_column& from) {
    for (std::size_t i = 0; i < from.buffers.size(); ++i) {
      if (!from.buffers[i]) continue;
      buffer& moved = kept_.emplace_back(1);
      moved.insert(moved.end(), from.buffers[i]->begin(), from.buffers[i]->end());
      array.buffers[i] = moved.data() + 1;
    }
    if (from.dictionary) move(*array.dictionary, *from.dictionary);
  }

  std::vector<buffer> kept_;
};

TEST_F(StreamLimits, BuffersThatAreNotAligned) {
  for (const bool is_double : {true, false}) {
    create(holes(is_double));
    const std::vector<made_batch> batches = {
        {numbers<double>("DEPTH", "g", {1.5, 2.5}), texts("BHID", {"A", "BC"})},
        {numbers<float>("DEPTH", "f", {3.5, 4.5}), texts("BHID", {"D", "EF"})},
        {numbers<std::uint16_t>("DEPTH", "e", {0x3C00, 0x4000}), texts("BHID", {"G", "H"})},
        {numbers<std::int64_t>("DEPTH", "l", {7, 8}), texts<std::int64_t>("BHID", {"I", "JK"})},
        {numbers<std::int16_t>("DEPTH", "s", {9, 10}),
         with_dictionary(numbers<std::uint32_t>("BHID", "I", {1, 0}), texts("", {"x", "y"}))},
    };
    for (const made_batch& each : batches) {
      made_stream from({each});
      odd_buffers odd;
      from.bend_batch = [&](ArrowArray& batch) { odd.bend(batch, each); };
      ASSERT_EQ(append(from), S_OK) << take_error_text();
    }
    const read_table found = read();
    const std::vector<double> depths = {1.5, 2.5, 3.5, 4.5, 1, 2, 7, 8, 9, 10};
    const std::vector<std::string> names = {"A", "BC", "D", "EF", "G", "H", "I", "JK", "y", "x"};
    ASSERT_EQ(found.cells[0].size(), 10U);
    for (std::size_t row = 0; row < 10; ++row) {
      EXPECT_EQ(found.cells[0][row], text_cell_of(names[row]));
      EXPECT_EQ(found.cells[1][row],
                is_double ? double_cell(depths[row]) : float_cell(static_cast<float>(depths[row])));
    }
  }
}

}  // namespace
}  // namespace ovtest
