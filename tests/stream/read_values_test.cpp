// Every value of a stream is the one that the getters give.
#include <fstream>

#include "getters.h"
#include "stream_host.h"
#include "support/reference_files.h"
#include "support/table_cases.h"

namespace ovtest {
namespace {

class StreamOfOwnTable : public testing::TestWithParam<table_case> {};

TEST_P(StreamOfOwnTable, GivesWhatTheGettersGive) {
  const scratch_folder folder;
  const std::filesystem::path path = folder / "own.ovt";
  write_bytes(path, GetParam().file);
  for (const LONG read_only : {1, 0}) {
    const owned<IOvTable> table = make_table();
    ASSERT_EQ(table->Open(path_text(path).get(), read_only), S_OK) << take_error_text();
    expect_streams_like_getters(table, {1, 7, 64});
    EXPECT_EQ(table->Close(), S_OK);
    EXPECT_TRUE(read_bytes(path) == GetParam().file);
  }
}

INSTANTIATE_TEST_SUITE_P(all, StreamOfOwnTable, testing::ValuesIn(table_cases()),
                         [](const auto& shown) { return test_name(shown.param.name); });

/// Without the links, which lead to tables of the list.
std::vector<std::string> referenced_tables() {
  std::vector<std::string> names = reference_names();
  std::erase_if(names, [](const std::string& name) { return name.starts_with("link_"); });
  return names;
}

class StreamOfReference : public testing::TestWithParam<std::string> {};

TEST_P(StreamOfReference, GivesWhatTheGettersGive) {
  const scratch_folder folder;
  const auto path = copy_reference(reference_json(GetParam())["file"].get<std::string>(), folder.path());
  if (!path) GTEST_SKIP() << "packed, and nothing here can unpack it";
  const owned<IOvTable> table = make_table();
  ASSERT_EQ(table->Open(path_text(*path).get(), 1), S_OK) << take_error_text();
  expect_streams_like_getters(table, {1000});
}

INSTANTIATE_TEST_SUITE_P(all, StreamOfReference, testing::ValuesIn(referenced_tables()),
                         [](const auto& shown) { return test_name(shown.param); });
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(StreamOfReference);

TEST(StreamOfReferences, AreThere) {
  if (reference_names().empty()) GTEST_SKIP() << "no reference tables in " << reference_folder();
}

class StreamValues : public StreamHost {};

TEST_F(StreamValues, NumbersOfEveryKindInDoublePrecision) {
  make_holes(0);
  const double values[] = {0.1, -0.0, -1e30, 1e30, 1e-30, 1.7976931348623157e308, std::nan("")};
  for (const double value : values) add_hole("X", value);
  const read_table found = read();
  for (std::size_t i = 0; i < std::size(values); ++i)
    EXPECT_EQ(found.cells[1][i], double_cell(values[i])) << i;
  const read_table nulls = read_with(ovStreamAbsentAsNull);
  EXPECT_EQ(nulls.cells[1][2], null_cell());
  EXPECT_EQ(nulls.cells[1][3], double_cell(1e30));
  EXPECT_EQ(nulls.cells[1][4], double_cell(1e-30));
}

TEST_F(StreamValues, FloatsAreWidenedTidilyWhereSoWished) {
  make_holes(0, false);
  for (const double value : {0.1, 1234.5678, 123456.7, -1e30}) add_hole("X", value);
  EXPECT_EQ(read().cells[1][0], float_cell(0.1F));
  const read_table widened = read_with(ovStreamWidened);
  EXPECT_EQ(widened.cells[1][0], double_cell(0.1));
  EXPECT_EQ(widened.cells[1][1], double_cell(1234.568));
  EXPECT_EQ(widened.cells[1][2], double_cell(123456.703125));
  EXPECT_EQ(widened.cells[1][3], double_cell(static_cast<double>(-1e30F)));
  EXPECT_EQ(read_with(ovStreamWidened | ovStreamAbsentAsNull).cells[1][3], null_cell());
}

TEST_F(StreamValues, TextsAreUtf8WithoutTheirBlanks) {
  make_holes(0);
  for (const char* text : {"", "A", "ABCDEFGH", "5 µm €", "  x"}) add_hole(text, 0);
  const std::vector<read_cell> cut = read().cells[0];
  EXPECT_EQ(cut[0], text_cell_of(""));
  EXPECT_EQ(cut[1], text_cell_of("A"));
  EXPECT_EQ(cut[2], text_cell_of("ABCDEFGH"));
  EXPECT_EQ(cut[3], text_cell_of("5 µm €"));
  EXPECT_EQ(cut[4], text_cell_of("  x"));
  const std::vector<read_cell> whole = read_with(ovStreamTrailingBlanks).cells[0];
  EXPECT_EQ(whole[0], text_cell_of("        "));
  EXPECT_EQ(whole[1], text_cell_of("A       "));
  const std::vector<read_cell> nulls = read_with(ovStreamTrailingBlanks | ovStreamAbsentAsNull).cells[0];
  EXPECT_EQ(nulls[0], null_cell());
  EXPECT_EQ(nulls[1], text_cell_of("A       "));
}

TEST_F(StreamValues, ADictionaryHasEachTextOfABatchOnce) {
  make_holes(0);
  for (const char* text : {"A", "B", "A", "", "B", "C"}) add_hole(text, 0);
  OvStreamRequest request;
  request.flags = ovStreamTextDictionaries | ovStreamAbsentAsNull;
  request.rowsPerBatch = 4;
  ovfile::arrow_stream stream = ovfile::read_stream(table_, request);
  ovfile::arrow_array first = stream.next();
  const ArrowArray& column = *first->children[0];
  ASSERT_EQ(column.dictionary->length, 2);
  EXPECT_EQ(text_at(*column.dictionary, 0), "A");
  EXPECT_EQ(text_at(*column.dictionary, 1), "B");
  const auto* indexes = ovfile::values_of<std::int32_t>(column);
  EXPECT_EQ((std::vector<std::int32_t>(indexes, indexes + 3)), (std::vector<std::int32_t>{0, 1, 0}));
  EXPECT_EQ(column.null_count, 1);
  ovfile::arrow_array second = stream.next();
  ASSERT_EQ(second->children[0]->dictionary->length, 2);
  EXPECT_EQ(text_at(*second->children[0]->dictionary, 1), "C");
}

TEST_F(StreamValues, ADictionaryOfManyTexts) {
  make_holes(5000);
  const read_table found = read_with(ovStreamTextDictionaries);
  for (std::size_t i = 0; i < 5000; ++i)
    EXPECT_EQ(found.cells[0][i], text_cell_of("H" + std::to_string(i + 1)));
}

TEST_F(StreamValues, RowsThatAreNotInTheFileYetAreRead) {
  make_holes(3);
  ASSERT_EQ(table_->GetRowAt(2), S_OK);
  ASSERT_EQ(table_->SetColumnDouble(2, 77), S_OK);
  EXPECT_EQ(read().cells[1], (std::vector<read_cell>{double_cell(1), double_cell(77), double_cell(3)}));
}

TEST_F(StreamValues, ManyPagesWithSomeOfThemChangedInMemory) {
  make_holes(30'000);
  ASSERT_EQ(table_->GetRowAt(15'000), S_OK);
  ASSERT_EQ(table_->SetColumnDouble(2, -5), S_OK);
  const read_table found = read();
  ASSERT_EQ(found.cells[1].size(), 30'000U);
  for (std::size_t i = 0; i < 30'000; ++i) {
    ASSERT_EQ(found.cells[1][i], double_cell(i == 14'999 ? -5 : static_cast<double>(i + 1)));
  }
  double value = 0;
  EXPECT_EQ(table_->GetColumnAsDouble(2, &value), S_OK);
  EXPECT_EQ(value, -5);
}

}  // namespace
}  // namespace ovtest
