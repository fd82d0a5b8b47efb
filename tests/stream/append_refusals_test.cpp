// What a table does not take in, with the words for it; the table stays as it was.
#include <limits>

#include "stream_host.h"

namespace ovtest {
namespace {

class StreamRefusals : public StreamHost {
 protected:
  void SetUp() override { make_holes(3); }

  static made_column depths(std::vector<double> values) { return numbers("DEPTH", "g", values); }
  static made_column names(std::vector<std::string> values) { return texts("BHID", values); }
};

TEST_F(StreamRefusals, ColumnsThatTheTableLacks) {
  expect_refused({numbers<double>("GRADE", "g", {1})},
                 "Append failed, column GRADE: the table has no such column");
  expect_refused({numbers<double>("depth", "g", {1})},
                 "Append failed, column depth: the table has no such column");
  expect_refused({numbers<double>("", "g", {1})}, "Append failed, column : the table has no such column");
}

TEST_F(StreamRefusals, ColumnsThatComeTwice) {
  expect_refused({depths({1}), names({"a"}), depths({2})},
                 "Append failed, column DEPTH: the stream has it twice");
}

TEST_F(StreamRefusals, TypesThatNobodyKnows) {
  for (const char* format : {"d:10,2", "z", "tdD", "+l", "", "gg"}) {
    auto column = depths({1});
    column.format = format;
    expect_refused({column}, std::string("Append failed, column DEPTH: its type \"") + format +
                                 "\" is none that a table can take in");
  }
  made_stream from({{depths({1})}});
  from.bend_type = [](ArrowSchema& type) { type.children[0]->format = nullptr; };
  expect_refused(from, "Append failed, column DEPTH: its type \"(none)\" is none that a table can take in");
}

TEST_F(StreamRefusals, AStreamThatReturnsWithoutABatchOrItsEnd) {
  const bytes before = content();
  made_stream from({{depths({1})}});
  from.stream.get_next = [](ArrowArrayStream*, ArrowArray*) { return 0; };
  expect_refused(from, "Append failed, the stream gave no answer");
  EXPECT_EQ(content(), before);
}

TEST_F(StreamRefusals, TextsForNumbersAndNumbersForTexts) {
  expect_refused({texts("DEPTH", {"1"})},
                 "Append failed, column DEPTH: it holds texts, and the table's column numbers");
  expect_refused({numbers<double>("BHID", "g", {1})},
                 "Append failed, column BHID: it holds numbers, and the table's column texts");
  expect_refused({with_dictionary(numbers<std::int32_t>("DEPTH", "i", {0}), texts("", {"1"}))},
                 "Append failed, column DEPTH: it holds texts, and the table's column numbers");
}

TEST_F(StreamRefusals, DictionariesThatAreNone) {
  expect_refused({with_dictionary(numbers<double>("BHID", "g", {0}), texts("", {"a"}))},
                 "Append failed, column BHID: the indexes of its dictionary are no integers");
  auto nested = with_dictionary(numbers<std::int32_t>("", "i", {0}), texts("", {"a"}));
  expect_refused({with_dictionary(numbers<std::int32_t>("BHID", "i", {0}), nested)},
                 "Append failed, column BHID: its dictionary is not one of plain values");
  for (const std::int32_t index : {-1, 2, 2147483647}) {
    expect_refused({with_dictionary(numbers<std::int32_t>("BHID", "i", {1, index}), texts("", {"a", "b"}))},
                   "Append failed, column BHID, row 2: the index lies outside its dictionary");
  }
  expect_refused({with_dictionary(numbers<std::uint64_t>("BHID", "L", {~0ULL}), texts("", {"a"}))},
                 "Append failed, column BHID, row 1: the index lies outside its dictionary");
}

TEST_F(StreamRefusals, TextsThatDoNotFit) {
  expect_refused({names({"a", "ABCDEFGHI"})},
                 "Append failed, column BHID, row 2: the text is longer than the column");
  expect_refused({names({"Ω"})},
                 "Append failed, column BHID, row 1: the text has a character outside the ANSI code page");
  expect_refused({names({"a\xC3"})}, "Append failed, column BHID, row 1: the text is no UTF-8");
  expect_refused({names({"\xED\xA0\x80"})}, "Append failed, column BHID, row 1: the text is no UTF-8");
  expect_refused({names({std::string("a\0b", 3)})},
                 "Append failed, column BHID, row 1: the text has a NUL character");
}

TEST_F(StreamRefusals, TheRowIsTheStreams) {
  made_stream from({{names({"a", "b"}), depths({1, 2})},
                    {names({"c"}), depths({3})},
                    {names({"d", "eeeeeeeee"}), depths({4, 5})}});
  expect_refused(from, "Append failed, column BHID, row 5: the text is longer than the column");
}

TEST_F(StreamRefusals, NumbersBeyondThePrecision) {
  make_holes(3, false, "single.ovt");
  for (const double value : {1e39, -3.5e38, std::numeric_limits<double>::infinity()}) {
    expect_refused({depths({1, value})},
                   "Append failed, column DEPTH, row 2: the number is beyond what the column can hold");
  }
}

TEST_F(StreamRefusals, OtherValuesForImplicitColumns) {
  const std::string words = ": the column is implicit, and the value is another one than its default";
  expect_refused({numbers<double>("DENSITY", "g", {2.75, 3})},
                 "Append failed, column DENSITY, row 2" + words);
  expect_refused({nothing("DENSITY", 1)}, "Append failed, column DENSITY, row 1" + words);
  expect_refused({texts("MINE", {"Sued"})}, "Append failed, column MINE, row 1" + words);
}

TEST_F(StreamRefusals, ArraysThatCannotBe) {
  using bend = std::function<void(ArrowArray&)>;
  const std::vector<std::pair<bend, std::string>> bent = {
      {[](ArrowArray& batch) { batch.length = -1; }, "a batch has a length or offset that cannot be"},
      {[](ArrowArray& batch) { batch.offset = -1; }, "a batch has a length or offset that cannot be"},
      {[](ArrowArray& batch) { batch.offset = batch.length = std::numeric_limits<std::int64_t>::max(); },
       "a batch has a length or offset that cannot be"},
      {[](ArrowArray& batch) { batch.n_children = 1; },
       "a batch has another number of columns than the stream"},
      {[](ArrowArray& batch) { batch.n_children = -2; },
       "a batch has another number of columns than the stream"},
      {[](ArrowArray& batch) { batch.length = 3; }, "column DEPTH: it has fewer rows than its batch"},
      {[](ArrowArray& batch) { batch.offset = 1; }, "column DEPTH: it has fewer rows than its batch"},
      {[](ArrowArray& batch) { batch.children[0]->length = -5; },
       "column DEPTH: its length or offset cannot be"},
      {[](ArrowArray& batch) { batch.children[0]->offset = -1; },
       "column DEPTH: its length or offset cannot be"},
      {[](ArrowArray& batch) { batch.children[0]->n_buffers = 1; },
       "column DEPTH: it has a wrong number of buffers"},
      {[](ArrowArray& batch) { batch.children[0]->n_children = 1; }, "column DEPTH: it has children"},
      {[](ArrowArray& batch) { batch.children[0]->buffers = nullptr; }, "column DEPTH: it has no buffers"},
      {[](ArrowArray& batch) { batch.children[0]->buffers[1] = nullptr; }, "column DEPTH: it has no values"},
      {[](ArrowArray& batch) { batch.children[0]->null_count = 1; },
       "column DEPTH: it has nulls and does not tell which"},
      {[](ArrowArray& batch) { batch.children[1]->buffers[1] = nullptr; },
       "column BHID: its texts have no offsets"},
      {[](ArrowArray& batch) { batch.children[1]->buffers[2] = nullptr; },
       "column BHID: its texts have no buffer"},
  };
  for (const auto& [how, words] : bent) {
    made_stream from({{depths({1, 2}), names({"a", "b"})}});
    from.bend_batch = how;
    expect_refused(from, "Append failed, " + words);
  }
}

TEST_F(StreamRefusals, ColumnsThatAreNotThere) {
  made_stream missing({{depths({1})}});
  ArrowArray* kept = nullptr;
  missing.bend_batch = [&kept](ArrowArray& batch) { kept = std::exchange(batch.children[0], nullptr); };
  expect_refused(missing, "Append failed, column DEPTH: it is not there");
  made_stream released({{depths({1})}});
  released.bend_batch = [](ArrowArray& batch) { batch.children[0]->release(batch.children[0]); };
  expect_refused(released, "Append failed, column DEPTH: it is not there");
  made_stream bare({{with_dictionary(numbers<std::int32_t>("BHID", "i", {0}), texts("", {"a"}))}});
  bare.bend_batch = [](ArrowArray& batch) {
    ArrowArray*& dictionary = batch.children[0]->dictionary;
    dictionary->release(dictionary);
    dictionary = nullptr;
  };
  expect_refused(bare, "Append failed, column BHID: it is not there");
}

TEST_F(StreamRefusals, OffsetsThatFall) {
  auto column = names({"ab", "cd"});
  column.buffers[1] = bytes_of<std::int32_t>({0, 3, 2});
  expect_refused({column}, "Append failed, column BHID, row 1: the text's offsets lead out of its buffer");
  column.buffers[1] = bytes_of<std::int32_t>({2, 1, 4});
  expect_refused({column}, "Append failed, column BHID, row 1: the text's offsets lead out of its buffer");
  column.buffers[1] = bytes_of<std::int32_t>({3, 3, 2});
  expect_refused({column}, "Append failed, column BHID: the offsets of its texts fall");
  column.buffers[1] = bytes_of<std::int32_t>({-1, 3, 4});
  expect_refused({column}, "Append failed, column BHID: its texts begin before their buffer");
  auto large = texts<std::int64_t>("BHID", {"ab", "cd"});
  large.buffers[1] = bytes_of<std::int64_t>({0, 1LL << 40, 4});
  expect_refused({large}, "Append failed, column BHID, row 1: the text's offsets lead out of its buffer");
  large.buffers[1] = bytes_of<std::int64_t>({0, std::numeric_limits<std::int64_t>::min(), 4});
  expect_refused({large}, "Append failed, column BHID, row 1: the text's offsets lead out of its buffer");
}

TEST_F(StreamRefusals, RowsThatAreNull) {
  made_stream from({{depths({1, 2})}});
  const std::uint8_t there = 1;
  const void* buffers[] = {&there};
  from.bend_batch = [&](ArrowArray& batch) {
    batch.buffers = buffers;
    batch.null_count = -1;
  };
  expect_refused(from, "Append failed, a batch has rows that are null");
}

TEST_F(StreamRefusals, StreamsThatAreNoneOfColumns) {
  const std::string words = "Append failed, the stream is not one of columns";
  made_stream numbers_alone({{depths({1})}});
  numbers_alone.bend_type = [](ArrowSchema& type) { type.format = "g"; };
  expect_refused(numbers_alone, words);
  made_stream childless({{depths({1})}});
  childless.bend_type = [](ArrowSchema& type) { type.children = nullptr; };
  expect_refused(childless, words);
  made_stream negative({{depths({1})}});
  negative.bend_type = [](ArrowSchema& type) { type.n_children = -1; };
  expect_refused(negative, words);
  made_stream without({{depths({1})}});
  without.bend_type = [](ArrowSchema& type) { type.children[0]->release(type.children[0]); };
  expect_refused(without, "Append failed, the stream has a column without a type");
}

TEST_F(StreamRefusals, StreamsThatFail) {
  made_stream silent({{depths({1})}, {depths({2})}});
  silent.fails_at = 1;
  expect_refused(silent, "Append failed, the stream failed");
  made_stream talking({{depths({1})}, {depths({2})}});
  talking.fails_at = 1;
  talking.words = "the disk is gone: Ω";
  expect_refused(talking, "Append failed, the stream failed: the disk is gone: Ω");
  made_stream untyped({{depths({1})}});
  untyped.fails_with_types = true;
  expect_refused(untyped, "Append failed, the stream failed");
}

TEST_F(StreamRefusals, LeaveTheFileAsItWas) {
  make_holes(5000, true, "many.ovt");
  ASSERT_EQ(table_->FlushChanges(), S_OK);
  const bytes before = content("many.ovt");
  std::vector<made_batch> batches(300, made_batch{depths(std::vector<double>(170, 1))});
  batches.push_back({depths({1})});
  made_stream from(std::move(batches));
  from.fails_at = 300;
  expect_refused(from, "Append failed, the stream failed");
  EXPECT_TRUE(content("many.ovt") == before);
  double value = 0;
  EXPECT_EQ(table_->GetColumnAsDouble(2, &value), S_OK);
  EXPECT_EQ(value, 1);
  ASSERT_EQ(table_->Close(), S_OK);
  EXPECT_TRUE(content("many.ovt") == before);
}

TEST_F(StreamRefusals, AreNoChangesOfAnotherProgram) {
  make_holes(5000, true, "many.ovt");
  ASSERT_EQ(table_->Close(), S_OK);
  open(0, "many.ovt");
  std::vector<made_batch> batches(300, made_batch{depths(std::vector<double>(170, 1))});
  made_stream from(std::move(batches));
  from.fails_at = 299;
  expect_refused(from, "Append failed, the stream failed");
  EXPECT_EQ(table_->Sort(2, VARIANT_FALSE), S_OK);
}

TEST_F(StreamRefusals, ReadOnlyTables) {
  ASSERT_EQ(table_->Close(), S_OK);
  open(1);
  expect_refused({depths({1})}, "Append failed, file is open in read-only mode");
}

TEST_F(StreamRefusals, TablesThatAreNotOpen) {
  ASSERT_EQ(table_->Close(), S_OK);
  EXPECT_EQ(append_batch({depths({1})}), E_FAIL);
}

TEST_F(StreamRefusals, TablesWithoutStoredFields) {
  auto schema = make_schema();
  schema->AddNumericColumn(bstr("ONE").get(), 1, 1);
  create(schema, "none.ovt");
  expect_refused({numbers<double>("ONE", "g", {1})}, "AddRow failed, the table has no stored fields");
}

TEST_F(StreamRefusals, NullPointers) {
  LONG rows = 9;
  EXPECT_EQ(streams()->Append(nullptr, &rows), E_POINTER);
  EXPECT_EQ(rows, 0);
  made_stream from({{depths({1})}});
  EXPECT_EQ(streams()->Append(&from.stream, nullptr), E_POINTER);
  EXPECT_EQ(from.alive, 0);
  EXPECT_EQ(this->rows(), 3);
}

TEST_F(StreamRefusals, StreamsThatWereReleased) {
  made_stream from({{depths({1})}});
  from.stream.release(&from.stream);
  LONG rows = 9;
  clear_error();
  EXPECT_EQ(streams()->Append(&from.stream, &rows), E_INVALIDARG);
  EXPECT_EQ(take_error_text(), "Append failed, the stream was released before");
}

TEST_F(StreamRefusals, TheTableItselfAsItsSource) {
  make_holes(500, true, "self.ovt");
  OvStreamRequest request;
  request.rowsPerBatch = 100;
  EXPECT_EQ(ovfile::append_stream(table_, ovfile::read_stream(table_, request)), 500);
  EXPECT_EQ(rows(), 1000);
  EXPECT_EQ(read().cells[1][999], double_cell(500));
}

TEST_F(StreamRefusals, AnAppendWithinAnAppend) {
  make_holes(5000, true, "many.ovt");
  std::vector<made_batch> many(60, made_batch{depths(std::vector<double>(1000, 7))});
  made_stream from(many);
  int refused = 0;
  from.meanwhile = [&] {
    made_stream inner(many);
    inner.fails_at = 50;
    clear_error();
    EXPECT_EQ(append(inner), E_FAIL);
    if (take_error_text() == "Append failed, rows of another stream are being appended to this table") {
      ++refused;
    }
  };
  LONG appended = 0;
  EXPECT_EQ(append(from, &appended), S_OK);
  EXPECT_EQ(appended, 60'000);
  EXPECT_EQ(refused, 61);
  ASSERT_EQ(rows(), 65'000);
  const auto depths_read = read().cells[1];
  for (std::size_t row = 5000; row < 65'000; ++row) ASSERT_EQ(depths_read[row], double_cell(7)) << row;
}

TEST_F(StreamRefusals, ATableThatIsChangedMeanwhile) {
  const std::string words = "Append failed, the table was closed or changed while rows were appended to it";
  made_stream adding({{depths({1})}, {depths({2})}});
  int batch = 0;
  adding.meanwhile = [&] {
    if (++batch == 2) add_hole("own", 77);
  };
  clear_error();
  EXPECT_EQ(append(adding), E_FAIL);
  EXPECT_EQ(take_error_text(), words);
  EXPECT_EQ(rows(), 4);
  EXPECT_EQ(read().cells[1][3], double_cell(77));
  made_stream closing({{depths({1})}, {depths({2})}});
  closing.meanwhile = [&] { table_->Close(); };
  EXPECT_EQ(append(closing), E_FAIL);
  EXPECT_EQ(take_error_text(), words);
  open();
  EXPECT_EQ(rows(), 4);
}

TEST_F(StreamRefusals, AnObjectThatIsLetGoMeanwhile) {
  made_stream from({{depths({1})}, {depths({2})}});
  IOvTableStream* bare = streams().get();
  from.meanwhile = [this] { table_ = owned<IOvTable>(); };
  LONG appended = 0;
  EXPECT_EQ(bare->Append(&from.stream, &appended), S_OK);
  EXPECT_EQ(appended, 2);
  table_ = make_table();
  open();
  EXPECT_EQ(rows(), 5);
}

}  // namespace
}  // namespace ovtest
