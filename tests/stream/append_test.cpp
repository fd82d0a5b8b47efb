// Rows appended by streams are the rows that `AddRow` and `SetColumn` make, byte for byte.
#include "stream_host.h"

namespace ovtest {
namespace {

class StreamAppend : public StreamHost, public testing::WithParamInterface<bool> {
 protected:
  static constexpr const char* plain = "row_by_row.ovt";

  /// Rows of the table of holes, value by value.
  void make_row_by_row(const std::vector<std::string>& names, const std::vector<double>& depths) {
    create(holes(GetParam()), plain);
    for (std::size_t i = 0; i < names.size(); ++i) {
      ASSERT_EQ(table_->AddRow(), S_OK);
      ASSERT_GE(table_->SetColumn(1, text_variant(names[i]).get()), S_OK);
      ASSERT_EQ(table_->SetColumn(2, variant(depths[i]).get()), S_OK);
    }
    ASSERT_EQ(table_->Close(), S_OK);
  }
  void expect_same_files() {
    ASSERT_EQ(table_->Close(), S_OK);
    EXPECT_TRUE(content() == content(plain));
  }
};

INSTANTIATE_TEST_SUITE_P(both, StreamAppend, testing::Bool(),
                         [](const auto& is_double) { return is_double.param ? "double" : "single"; });

TEST_P(StreamAppend, GivesTheBytesThatSetColumnGives) {
  const std::vector<std::string> names = {"A", "ABCDEFGH", "", "5 µm €", "ABCDE", "A  \t", "\t", "AB  CD"};
  const std::vector<double> depths = {0.1, -1e30, 1e30, 1e-30, -0.0, 123456.7, 3, 4};
  make_row_by_row(names, depths);
  create(holes(GetParam()));
  LONG rows = 0;
  made_stream from({{texts("BHID", names), numbers("DEPTH", "g", depths)}});
  ASSERT_EQ(append(from, &rows), S_OK) << take_error_text();
  EXPECT_EQ(rows, 8);
  expect_same_files();
}

TEST_P(StreamAppend, InManyBatchesOverManyPages) {
  std::vector<std::string> names;
  std::vector<double> depths;
  std::vector<made_batch> batches;
  for (int size = 0; names.size() < 40'000; size = size * 3 + 1) {
    const std::size_t first = names.size();
    for (int i = 0; i < size; ++i) {
      names.push_back("N" + std::to_string(names.size()));
      depths.push_back(static_cast<double>(depths.size()) / 7);
    }
    batches.push_back(
        {numbers("DEPTH", "g", std::vector<double>(depths.begin() + static_cast<long>(first), depths.end())),
         texts("BHID", std::vector<std::string>(names.begin() + static_cast<long>(first), names.end()))});
  }
  make_row_by_row(names, depths);
  create(holes(GetParam()));
  made_stream from(std::move(batches));
  ASSERT_EQ(append(from), S_OK) << take_error_text();
  EXPECT_EQ(rows(), static_cast<LONG>(names.size()));
  expect_same_files();
}

TEST_P(StreamAppend, BehindRowsThatAreThereAlready) {
  for (const int before : {1, 168, 169, 170, 338, 20'000}) {
    std::vector<std::string> names;
    std::vector<double> depths;
    for (int row = 1; row <= before + 200; ++row) {
      names.push_back("H" + std::to_string(row));
      depths.push_back(row);
    }
    make_row_by_row(names, depths);
    make_holes(before, GetParam());
    const auto added = [before](const auto& all) {
      return std::decay_t<decltype(all)>(all.begin() + before, all.end());
    };
    ASSERT_EQ(append_batch({texts("BHID", added(names)), numbers("DEPTH", "g", added(depths))}), S_OK);
    EXPECT_EQ(read().cells[1].back(),
              GetParam() ? double_cell(before + 200) : float_cell(static_cast<float>(before + 200)));
    expect_same_files();
  }
}

TEST_P(StreamAppend, BehindACutTable) {
  const auto cut = [&](const char* name) {
    make_holes(500, GetParam(), name);
    ASSERT_EQ(table_->ReduceRowCountTo(338), S_OK);
  };
  cut(plain);
  add_hole("new", 5);
  ASSERT_EQ(table_->Close(), S_OK);
  cut("table.ovt");
  ASSERT_EQ(append_batch({texts("BHID", {"new"}), numbers<double>("DEPTH", "g", {5})}), S_OK);
  EXPECT_EQ(rows(), 339);
  expect_same_files();
}

TEST_P(StreamAppend, WhatTheStreamLacksTakesItsDefault) {
  create(holes(GetParam()), plain);
  for (int i = 0; i < 3; ++i) {
    ASSERT_EQ(table_->AddRow(), S_OK);
    ASSERT_EQ(table_->SetColumnDouble(2, i), S_OK);
  }
  ASSERT_EQ(table_->Close(), S_OK);
  create(holes(GetParam()));
  ASSERT_EQ(append_batch({numbers<double>("DEPTH", "g", {0, 1, 2})}), S_OK);
  EXPECT_EQ(read().cells[0][1], text_cell_of("none"));
  expect_same_files();
}

TEST_P(StreamAppend, RowsWithoutColumnsAreDefaults) {
  create(holes(GetParam()));
  made_stream from(std::vector<made_batch>(1));
  from.bend_batch = [](ArrowArray& batch) { batch.length = 3; };
  ASSERT_EQ(append(from), S_OK) << take_error_text();
  const read_table found = read();
  EXPECT_EQ(found.cells[0], (std::vector<read_cell>(3, text_cell_of("none"))));
  EXPECT_EQ(found.cells[1], std::vector<read_cell>(3, GetParam() ? double_cell(-1) : float_cell(-1)));
}

TEST_P(StreamAppend, AStreamWithoutRowsChangesNothing) {
  make_holes(3, GetParam());
  ASSERT_EQ(table_->FlushChanges(), S_OK);
  const bytes before = content();
  LONG appended = -1;
  made_stream none({{texts("BHID", {})}});
  EXPECT_EQ(append(none, &appended), S_OK);
  EXPECT_EQ(appended, 0);
  ASSERT_EQ(table_->Close(), S_OK);
  EXPECT_TRUE(content() == before);
}

TEST_P(StreamAppend, TheCursorStays) {
  make_holes(3, GetParam());
  ASSERT_EQ(table_->GetRowAt(2), S_OK);
  ASSERT_EQ(append_batch({numbers<double>("DEPTH", "g", {7})}), S_OK);
  LONG row = 0;
  double value = 0;
  EXPECT_EQ(table_->GetCurrentRow(&row), S_OK);
  EXPECT_EQ(row, 2);
  EXPECT_EQ(table_->GetColumnAsDouble(2, &value), S_OK);
  EXPECT_EQ(value, 2);
  EXPECT_EQ(table_->GetNextRow(), S_OK);
  EXPECT_EQ(table_->GetNextRow(), S_OK);
  EXPECT_EQ(table_->GetColumnAsDouble(2, &value), S_OK);
  EXPECT_EQ(value, 7);
  EXPECT_EQ(table_->GetNextRow(), S_FALSE);
}

TEST_P(StreamAppend, RowsCanBeAddedAndChangedAfterwards) {
  make_holes(2, GetParam(), plain);
  add_hole("S", 10);
  add_hole("T", 11);
  ASSERT_EQ(table_->Close(), S_OK);
  make_holes(2, GetParam());
  ASSERT_EQ(append_batch({texts("BHID", {"x"}), numbers<double>("DEPTH", "g", {0})}), S_OK);
  ASSERT_EQ(table_->GetLastRow(), S_OK);
  ASSERT_EQ(table_->SetColumnString(1, bstr("S").get()), S_OK);
  ASSERT_EQ(table_->SetColumnDouble(2, 10), S_OK);
  add_hole("T", 11);
  expect_same_files();
}

TEST_P(StreamAppend, TheRangesWiden) {
  make_holes(3, GetParam());
  double low = 0;
  double high = 0;
  ASSERT_EQ(table_->GetColumnMin(2, &low), S_OK);
  ASSERT_EQ(append_batch({numbers<double>("DEPTH", "g", {-4.5, -1e30, 1e30, 8, 1e-30})}), S_OK);
  EXPECT_EQ(table_->GetColumnMin(2, &low), S_OK);
  EXPECT_EQ(table_->GetColumnMax(2, &high), S_OK);
  EXPECT_EQ(low, -4.5);
  EXPECT_EQ(high, 8);
}

TEST_P(StreamAppend, RangesThatAreAskedForMeanwhileWidenToo) {
  make_holes(3, GetParam());
  made_stream from({{numbers<double>("DEPTH", "g", {200})}});
  double high = 0;
  from.meanwhile = [&] { EXPECT_EQ(table_->GetColumnMax(2, &high), S_OK); };
  ASSERT_EQ(append(from), S_OK);
  EXPECT_EQ(high, 3);
  EXPECT_EQ(table_->GetColumnMax(2, &high), S_OK);
  EXPECT_EQ(high, 200);
}

TEST_P(StreamAppend, RangesStayWhenNothingIsAppended) {
  make_holes(3, GetParam());
  double before = 0;
  double low = 0;
  double high = 0;
  ASSERT_EQ(table_->GetColumnMin(2, &before), S_OK);
  EXPECT_EQ(append_batch({numbers<double>("DEPTH", "g", {-99, 99}), texts("BHID", {"far too long", ""})}),
            E_FAIL);
  EXPECT_EQ(table_->GetColumnMin(2, &low), S_OK);
  EXPECT_EQ(table_->GetColumnMax(2, &high), S_OK);
  EXPECT_EQ(low, before);
  EXPECT_EQ(high, 3);
}

TEST_P(StreamAppend, WhatWasReadGoesIntoALikeTable) {
  make_holes(1000, GetParam(), plain);
  ASSERT_EQ(table_->GetLastRow(), S_OK);
  ASSERT_EQ(table_->SetColumnDouble(2, -1e30), S_OK);
  ASSERT_EQ(table_->SetColumnString(1, bstr("").get()), S_OK);
  ASSERT_EQ(table_->FlushChanges(), S_OK);
  for (ULONG flags = 0; flags < 16; ++flags) {
    OvStreamRequest request;
    request.flags = flags;
    request.rowsPerBatch = 77;
    const owned<IOvTable> copy = make_table();
    ASSERT_EQ(copy->Create(path_text(path()).get(), holes(GetParam()).get()), S_OK);
    EXPECT_EQ(ovfile::append_stream(copy, ovfile::read_stream(table_, request)), 1000);
    ASSERT_EQ(copy->Close(), S_OK);
    EXPECT_TRUE(content() == content(plain)) << flags;
  }
}

class StreamAppendOrders : public StreamHost, public testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(all, StreamAppendOrders, testing::Values(0, 256, 1024, 1280));

/// A text NAME of 4 characters and a number VALUE, one row of which is there.
bytes table_in_order(int order) {
  const word_format format{4, order};
  std::vector<atom> atoms;
  add_text_atoms(atoms, "NAME", 1, 1);
  atoms.push_back(number_atom("VALUE", 2, -1));
  header_words words;
  words.pages = 2;
  words.records_in_last_page = 1;
  bytes file = make_header(words, atoms, format);
  add_page(file, format);
  put_text(file, record_word(1, 0, 2, 1), 1, "one", format);
  put_number(file, record_word(1, 0, 2, 2), 1.5, format);
  return file;
}

TEST_P(StreamAppendOrders, NumbersGoInTheFilesOwnOrder) {
  const word_format format{4, GetParam()};
  write_bytes(path(), table_in_order(GetParam()));
  open();
  ASSERT_EQ(append_batch({texts("NAME", {"two", "def"}),
                          with_nulls(numbers<double>("VALUE", "g", {0.1, 9}), {true, false})}),
            S_OK)
      << take_error_text();
  ASSERT_EQ(append_batch({texts("NAME", {"four"})}), S_OK);
  ASSERT_EQ(table_->Close(), S_OK);
  bytes expected = table_in_order(GetParam());
  put_number(expected, 27, 4, format);
  put_text(expected, record_word(1, 1, 2, 1), 1, "two", format);
  put_number(expected, record_word(1, 1, 2, 2), 0.1, format);
  put_text(expected, record_word(1, 2, 2, 1), 1, "def", format);
  put_number(expected, record_word(1, 2, 2, 2), -1e30, format);
  put_text(expected, record_word(1, 3, 2, 1), 1, "four", format);
  put_number(expected, record_word(1, 3, 2, 2), -1, format);
  EXPECT_TRUE(content() == expected);
}

TEST_P(StreamAppendOrders, AFileMayEndWithItsRows) {
  const word_format format{4, GetParam()};
  bytes file = table_in_order(GetParam());
  file.resize(record_word(1, 1, 2, 1) * 4);
  write_bytes(path(), file);
  open();
  ASSERT_EQ(append_batch({texts("NAME", {"two"})}), S_OK) << take_error_text();
  ASSERT_EQ(table_->Close(), S_OK);
  bytes expected = table_in_order(GetParam());
  put_number(expected, 27, 2, format);
  put_text(expected, record_word(1, 1, 2, 1), 1, "two", format);
  put_number(expected, record_word(1, 1, 2, 2), -1, format);
  EXPECT_TRUE(content() == expected);
}

/// Rows behind the gap would make zeros of those that are missing.
TEST_P(StreamAppendOrders, AFileThatHasLostFullPagesIsRefused) {
  const word_format format{4, GetParam()};
  bytes file = table_in_order(GetParam());
  put_number(file, 26, 5, format);
  put_number(file, 27, 254, format);
  write_bytes(path(), file);
  open();
  EXPECT_EQ(append_batch({texts("NAME", {"two"})}), E_FAIL);
  EXPECT_EQ(take_error_text(), "Append failed, the table's file ends before its rows do");
  ASSERT_EQ(table_->Close(), S_OK);
  EXPECT_TRUE(content() == file);
}

/// A text MIXED whose first word stands in the header alone.
bytes table_with_a_word_in_the_header(word_format format) {
  std::vector<atom> atoms;
  add_text_atoms(atoms, "MIXED", 2, 1, "ever");
  atoms[0].position = 0;
  atoms[1].position = 1;
  header_words words;
  words.pages = 2;
  words.records_in_last_page = 1;
  bytes file = make_header(words, atoms, format);
  add_page(file, format);
  put_text(file, record_word(1, 0, 1, 1), 1, "here", format);
  return file;
}

TEST_P(StreamAppendOrders, AWordThatTheHeaderHasIsTakenAsItStandsThere) {
  const word_format format{4, GetParam()};
  write_bytes(path(), table_with_a_word_in_the_header(format));
  open();
  EXPECT_EQ(append_batch({texts("MIXED", {"neverone"})}), E_FAIL);
  ASSERT_EQ(append_batch({texts("MIXED", {"evermore", "ever"})}), S_OK) << take_error_text();
  ASSERT_EQ(table_->Close(), S_OK);
  bytes expected = table_with_a_word_in_the_header(format);
  put_number(expected, 27, 3, format);
  put_text(expected, record_word(1, 1, 1, 1), 1, "more", format);
  put_text(expected, record_word(1, 2, 1, 1), 1, "    ", format);
  EXPECT_TRUE(content() == expected);
}

}  // namespace
}  // namespace ovtest
