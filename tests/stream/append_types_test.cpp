// Every type that a table takes in.
#include <cmath>
#include <limits>

#include "stream_host.h"

namespace ovtest {
namespace {

class StreamAppendTypes : public StreamHost {
 protected:
  std::vector<read_cell> depths_of(made_column column, bool is_double = true) {
    column.name = "DEPTH";
    create(holes(is_double));
    EXPECT_EQ(append_batch({std::move(column)}), S_OK) << take_error_text();
    return read().cells[1];
  }
  std::vector<read_cell> names_of(made_column column) {
    column.name = "BHID";
    create(holes(true));
    EXPECT_EQ(append_batch({std::move(column)}), S_OK) << take_error_text();
    return read().cells[0];
  }
  /// The ends of types that have no more digits than the table.
  template <class Value>
  void expect_ends(const char* format, bool in_single) {
    using limits = std::numeric_limits<Value>;
    const auto column = numbers<Value>("", format, {limits::lowest(), Value{7}, limits::max()});
    EXPECT_EQ(depths_of(column),
              (doubles({static_cast<double>(limits::lowest()), 7, static_cast<double>(limits::max())})))
        << format;
    if (!in_single) return;
    EXPECT_EQ(depths_of(column, false)[2], float_cell(static_cast<float>(limits::max()))) << format;
  }
  static std::vector<read_cell> doubles(const std::vector<double>& values) {
    std::vector<read_cell> cells;
    for (const double each : values) cells.push_back(double_cell(each));
    return cells;
  }
  static std::vector<read_cell> strings(const std::vector<std::string>& values) {
    std::vector<read_cell> cells;
    for (const std::string& each : values) cells.push_back(text_cell_of(each));
    return cells;
  }
};

TEST_F(StreamAppendTypes, IntegersOfEveryWidth) {
  expect_ends<std::int8_t>("c", true);
  expect_ends<std::uint8_t>("C", true);
  expect_ends<std::int16_t>("s", true);
  expect_ends<std::uint16_t>("S", true);
  expect_ends<std::int32_t>("i", false);
  expect_ends<std::uint32_t>("I", false);
}

TEST_F(StreamAppendTypes, LargeIntegersThatHaveFewDigits) {
  const auto column =
      numbers<std::int64_t>("", "l", {std::numeric_limits<std::int64_t>::min(), 1LL << 62, 9007199254740994});
  EXPECT_EQ(depths_of(column), doubles({-9223372036854775808.0, 4611686018427387904.0, 9007199254740994.0}));
  const auto unsigned_ones = numbers<std::uint64_t>("", "L", {1ULL << 63, 0, 0xFFFFFFFFFFFFF800});
  EXPECT_EQ(depths_of(unsigned_ones), doubles({9223372036854775808.0, 0, 18446744073709549568.0}));
  const auto lowest = std::numeric_limits<std::int32_t>::min();
  const auto narrow = numbers<std::int32_t>("", "i", {lowest, 16777216, 16777218, -2147483520});
  const std::vector<read_cell> cells = depths_of(narrow, false);
  EXPECT_EQ(cells[0], float_cell(-2147483648.0F));
  EXPECT_EQ(cells[1], float_cell(16777216.0F));
  EXPECT_EQ(cells[2], float_cell(16777218.0F));
  EXPECT_EQ(cells[3], float_cell(-2147483520.0F));
}

TEST_F(StreamAppendTypes, IntegersWithMoreDigitsThanTheTableAreRefused) {
  const std::string words =
      "Append failed, column DEPTH, row 2: the integer has more digits than the column can hold";
  make_holes(2);
  for (const std::int64_t value :
       std::initializer_list<std::int64_t>{9007199254740993, -9007199254740993, 9223372036854775807}) {
    expect_refused({numbers<std::int64_t>("DEPTH", "l", {9007199254740992, value})}, words);
  }
  expect_refused({numbers<std::uint64_t>("DEPTH", "L", {1, 18446744073709551615U})}, words);
  make_holes(2, false, "single.ovt");
  expect_refused({numbers<std::int32_t>("DEPTH", "i", {16777216, 16777217})}, words);
  expect_refused({numbers<std::int32_t>("DEPTH", "i", {16777216, -16777217})}, words);
  expect_refused({numbers<std::uint32_t>("DEPTH", "I", {16777216, 4294967295})}, words);
  expect_refused({numbers<std::int64_t>("DEPTH", "l", {16777216, 16777217})}, words);
  const auto indexes = numbers<std::int32_t>("DEPTH", "i", {0, 1});
  expect_refused({with_dictionary(indexes, numbers<std::int32_t>("", "i", {1, 16777217}))}, words);
}

TEST_F(StreamAppendTypes, FloatsKeepTheirDecimalDigitsInDoubles) {
  const auto column = numbers<float>("", "f", {0.1F, 1234.5678F, 123456.7F, -1e30F});
  EXPECT_EQ(depths_of(column), doubles({0.1, 1234.568, 123456.703125, -1e30}));
  EXPECT_EQ(depths_of(column, false)[0], float_cell(0.1F));
}

TEST_F(StreamAppendTypes, NumbersWithAMeaningKeepItInDoubles) {
  EXPECT_EQ(depths_of(numbers<float>("", "f", {-1e30F, 1e30F, 1e-30F})), doubles({-1e30, 1e30, 1e-30}));
}

TEST_F(StreamAppendTypes, DoublesAreRoundedToFloats) {
  const auto column = numbers<double>("", "g", {0.1, 3.4028234663852886e38, 1e-300, -1e30});
  const std::vector<read_cell> cells = depths_of(column, false);
  EXPECT_EQ(cells[0], float_cell(0.1F));
  EXPECT_EQ(cells[1], float_cell(3.4028235e38F));
  EXPECT_EQ(cells[2], float_cell(0));
  EXPECT_EQ(cells[3], float_cell(-1e30F));
}

TEST_F(StreamAppendTypes, HalfFloats) {
  // 1, -2.5, the smallest of all, the largest, 0.1 as near as it gets, infinity.
  const auto column = numbers<std::uint16_t>("", "e", {0x3C00, 0xC100, 0x0001, 0x7BFF, 0x2E66, 0x7C00});
  EXPECT_EQ(depths_of(column, false)[1], float_cell(-2.5F));
  const std::vector<read_cell> cells = depths_of(column);
  EXPECT_EQ(cells[0], double_cell(1));
  EXPECT_EQ(cells[2], double_cell(1e-7));  // 5.96e-8, kept to seven places
  EXPECT_EQ(cells[3], double_cell(65504));
  EXPECT_EQ(cells[4], double_cell(0.0999756));
  EXPECT_EQ(cells[5], double_cell(std::numeric_limits<double>::infinity()));
}

TEST_F(StreamAppendTypes, NoNumbersAndInfinities) {
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(depths_of(numbers<double>("", "g", {infinity, -infinity})), doubles({infinity, -infinity}));
  const std::vector<read_cell> cells = depths_of(numbers<double>("", "g", {std::nan("")}), false);
  EXPECT_TRUE(std::isnan(std::bit_cast<float>(static_cast<std::uint32_t>(cells[0].bits))));
  EXPECT_EQ(depths_of(numbers<float>("", "f", {std::numeric_limits<float>::infinity()}), false)[0],
            float_cell(std::numeric_limits<float>::infinity()));
}

TEST_F(StreamAppendTypes, TruthIsOneOrNought) {
  EXPECT_EQ(depths_of(truths("", {true, false, true})), doubles({1, 0, 1}));
}

TEST_F(StreamAppendTypes, NothingIsAbsent) {
  EXPECT_EQ(depths_of(nothing("", 2)), doubles({-1e30, -1e30}));
  EXPECT_EQ(names_of(nothing("", 2)), strings({"", ""}));
}

TEST_F(StreamAppendTypes, NullsAreAbsent) {
  EXPECT_EQ(depths_of(with_nulls(numbers<double>("", "g", {1, 2, 3}), {true, false, true})),
            doubles({1, -1e30, 3}));
  EXPECT_EQ(depths_of(with_nulls(truths("", {true, true}), {false, true})), doubles({-1e30, 1}));
  EXPECT_EQ(names_of(with_nulls(texts("", {"a", "far too long", "c"}), {true, false, true})),
            strings({"a", "", "c"}));
  EXPECT_EQ(read_with(ovStreamAbsentAsNull).cells[0][1], null_cell());
}

TEST_F(StreamAppendTypes, NoNullsAreCountedOrNot) {
  auto column = with_nulls(numbers<double>("", "g", {1, 2}), {false, false});
  column.nulls = 0;
  EXPECT_EQ(depths_of(column), doubles({1, 2}));
  column.nulls = 2;
  EXPECT_EQ(depths_of(column), doubles({-1e30, -1e30}));
}

TEST_F(StreamAppendTypes, SlicedColumns) {
  EXPECT_EQ(depths_of(sliced(numbers<std::int16_t>("", "s", {1, 2, 3, 4}), 2)), doubles({3, 4}));
  EXPECT_EQ(depths_of(sliced(truths("", {true, true, false, true}), 1)), doubles({1, 0, 1}));
  EXPECT_EQ(names_of(sliced(texts("", {"aa", "b", "ccc"}), 1)), strings({"b", "ccc"}));
  std::vector<double> values(40);
  std::vector<bool> there(40);
  std::vector<double> expected;
  for (std::size_t i = 0; i < values.size(); ++i) {
    values[i] = static_cast<double>(i);
    there[i] = i % 3 != 0;
    if (i >= 11) expected.push_back(there[i] ? values[i] : -1e30);
  }
  EXPECT_EQ(depths_of(sliced(with_nulls(numbers("", "g", values), there), 11)), doubles(expected));
}

TEST_F(StreamAppendTypes, SlicedBatches) {
  create(holes(true));
  made_stream from(
      {{numbers<double>("DEPTH", "g", {1, 2, 3, 4}), sliced(texts("BHID", {"-", "a", "b", "c", "d"}), 1)}});
  from.bend_batch = [](ArrowArray& batch) {
    batch.offset = 1;
    batch.length = 2;
  };
  ASSERT_EQ(append(from), S_OK) << take_error_text();
  EXPECT_EQ(read().cells[1], doubles({2, 3}));
  EXPECT_EQ(read().cells[0], strings({"b", "c"}));
}

TEST_F(StreamAppendTypes, LargeTexts) {
  EXPECT_EQ(names_of(texts<std::int64_t>("", {"a", "", "5 µm"})), strings({"a", "", "5 µm"}));
  EXPECT_EQ(names_of(sliced(texts<std::int64_t>("", {"a", "b"}), 1)), strings({"b"}));
}

TEST_F(StreamAppendTypes, Dictionaries) {
  const auto words = texts("", {"x", "yy", ""});
  EXPECT_EQ(names_of(with_dictionary(numbers<std::int32_t>("", "i", {1, 0, 1, 2}), words)),
            strings({"yy", "x", "yy", ""}));
  EXPECT_EQ(names_of(with_dictionary(numbers<std::uint8_t>("", "C", {2, 1}), words)), strings({"", "yy"}));
  EXPECT_EQ(names_of(with_dictionary(numbers<std::int64_t>("", "l", {0}), texts<std::int64_t>("", {"z"}))),
            strings({"z"}));
  EXPECT_EQ(depths_of(with_dictionary(numbers<std::int16_t>("", "s", {1, 1, 0}),
                                      numbers<float>("", "f", {0.5F, 0.1F}))),
            doubles({0.1, 0.1, 0.5}));
}

TEST_F(StreamAppendTypes, DictionariesWithNullsAndSlices) {
  const auto words = with_nulls(texts("", {"x", "yy", "z"}), {true, false, true});
  const auto indexes = with_nulls(numbers<std::int32_t>("", "i", {0, 1, 99, 2}), {true, true, false, true});
  EXPECT_EQ(names_of(with_dictionary(indexes, words)), strings({"x", "", "", "z"}));
  EXPECT_EQ(names_of(with_dictionary(sliced(indexes, 3), sliced(texts("", {"-", "x", "yy", "z"}), 1))),
            strings({"z"}));
}

TEST_F(StreamAppendTypes, ADictionaryEntryThatNobodyUsesMayBeWhatItLikes) {
  EXPECT_EQ(names_of(with_dictionary(numbers<std::int8_t>("", "c", {1}), texts("", {"far too long", "b"}))),
            strings({"b"}));
}

TEST_F(StreamAppendTypes, ImplicitColumnsTakeTheirOwnValue) {
  create(holes(false));
  ASSERT_EQ(append_batch({numbers<double>("DENSITY", "g", {2.75, 2.75}), texts("MINE", {"Nord", "Nord  "})}),
            S_OK);
  EXPECT_EQ(rows(), 2);
}

TEST_F(StreamAppendTypes, AsManyCharactersAsTheColumnHas) {
  EXPECT_EQ(names_of(texts("", {"€€€€€€€€", "ABCDEFGH   \t"})), strings({"€€€€€€€€", "ABCDEFGH"}));
}

}  // namespace
}  // namespace ovtest
