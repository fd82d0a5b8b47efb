// Streams, their table, and who outlives whom.
#include <cerrno>

#include "stream_host.h"
#include "support/denied_memory.h"

namespace ovtest {
namespace {

constexpr const char* changed =
    "the table was closed or changed after the stream was made, which reads it as it was then";

class StreamLifetime : public StreamHost {
 protected:
  void SetUp() override {
    make_holes(10);
    OvStreamRequest request;
    request.rowsPerBatch = 4;
    stream_ = ovfile::read_stream(table_, request);
    first_ = stream_.next();
  }

  void expect_error(int code = EINVAL, const std::string& words = changed) {
    for (int i = 0; i < 2; ++i) {
      ArrowArray batch{};
      batch.length = 99;
      EXPECT_EQ(stream_.get()->get_next(stream_.get(), &batch), code);
      EXPECT_EQ(batch.release, nullptr);
      ASSERT_NE(stream_.get()->get_last_error(stream_.get()), nullptr);
      EXPECT_EQ(stream_.get()->get_last_error(stream_.get()), words);
    }
    EXPECT_EQ(cell_at(*first_->children[1], {"g", "", false, {}, ""}, 3), double_cell(4));
  }

  ovfile::arrow_stream stream_;
  ovfile::arrow_array first_;
};

TEST_F(StreamLifetime, AClosedTableEndsItWithAnError) {
  ASSERT_EQ(table_->Close(), S_OK);
  expect_error();
}

TEST_F(StreamLifetime, AnotherFileInTheObjectEndsIt) {
  ASSERT_EQ(table_->Close(), S_OK);
  open();
  expect_error();
}

TEST_F(StreamLifetime, OpeningAgainWithoutClosingEndsIt) {
  open();
  expect_error();
}

TEST_F(StreamLifetime, EveryChangeEndsIt) {
  using change = std::function<HRESULT(IOvTable&)>;
  const std::vector<std::pair<const char*, change>> changes = {
      {"value", [](IOvTable& table) { return table.SetColumnDouble(2, 5); }},
      {"text", [](IOvTable& table) { return table.SetColumnString(1, bstr("X").get()); }},
      {"row", [](IOvTable& table) { return table.AddRow(); }},
      {"cut", [](IOvTable& table) { return table.ReduceRowCountTo(9); }},
      {"cut to nothing", [](IOvTable& table) { return table.ReduceRowCountTo(0); }},
      {"sort", [](IOvTable& table) { return table.Sort(2, VARIANT_FALSE); }},
      {"name", [](IOvTable& table) { return table.SetColumnName(2, bstr("AT").get()); }},
      {"default", [](IOvTable& table) { return table.SetColumnDefaultDouble(3, 3); }},
      {"default text", [](IOvTable& table) { return table.SetColumnDefaultString(1, bstr("a").get()); }},
      {"field", [](IOvTable& table) { return table.AddImplicitNumericColumnDouble(bstr("NEW").get(), 0); }},
  };
  for (const auto& [name, make] : changes) {
    const std::string file = std::string(name) + ".ovt";
    make_holes(10, true, file.c_str());
    OvStreamRequest request;
    request.rowsPerBatch = 4;
    stream_ = ovfile::read_stream(table_, request);
    first_ = stream_.next();
    ASSERT_EQ(make(*table_), S_OK) << name << ": " << take_error_text();
    SCOPED_TRACE(name);
    expect_error();
  }
}

TEST_F(StreamLifetime, LookingAtTheTableDoesNotEndIt) {
  double value = 0;
  EXPECT_EQ(table_->GetRowAt(9), S_OK);
  EXPECT_EQ(table_->GetColumnAsDouble(2, &value), S_OK);
  EXPECT_EQ(table_->GetColumnMin(2, &value), S_OK);
  EXPECT_EQ(table_->FlushChanges(), S_OK);
  EXPECT_EQ(stream_.next()->length, 4);
  EXPECT_EQ(stream_.next()->length, 2);
}

TEST_F(StreamLifetime, TheEndIsAReleasedArrayForEver) {
  EXPECT_EQ(stream_.next()->length, 4);
  EXPECT_EQ(stream_.next()->length, 2);
  for (int i = 0; i < 3; ++i) EXPECT_FALSE(stream_.next());
  EXPECT_EQ(stream_.get()->get_last_error(stream_.get()), nullptr);
  ASSERT_EQ(table_->Close(), S_OK);
  EXPECT_FALSE(stream_.next());
}

TEST_F(StreamLifetime, AReleasedStreamSaysSo) {
  stream_.get()->release(stream_.get());
  EXPECT_EQ(stream_->release, nullptr);
  EXPECT_EQ(stream_->private_data, nullptr);
  EXPECT_EQ(cell_at(*first_->children[1], {"g", "", false, {}, ""}, 0), double_cell(1));
}

TEST_F(StreamLifetime, ItKeepsTheObjectAlive) {
  table_ = owned<IOvTable>();
  EXPECT_EQ(stream_.next()->length, 4);
  stream_.reset();
  EXPECT_EQ(cell_at(*first_->children[0], {"u", "", false, {}, ""}, 3), text_cell_of("H4"));
}

TEST_F(StreamLifetime, ColumnsMayBeMovedOutOfTheirBatch) {
  ovfile::arrow_array column(std::move(*first_->children[1]));
  first_.reset();
  stream_.reset();
  table_ = owned<IOvTable>();
  EXPECT_EQ(column->length, 4);
  EXPECT_EQ(cell_at(*column, {"g", "", false, {}, ""}, 2), double_cell(3));
}

TEST_F(StreamLifetime, BatchesAndTypesKeepTheLibraryLoaded) {
  ovfile::arrow_schema schema = stream_.schema();
  stream_.reset();
  table_ = owned<IOvTable>();
  EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
  first_.reset();
  EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
  schema.reset();
  EXPECT_EQ(DllCanUnloadNow(), S_OK);
}

TEST_F(StreamLifetime, TwoStreamsAndTheCursorDoNotDisturbEachOther) {
  ASSERT_EQ(table_->GetRowAt(7), S_OK);
  ovfile::arrow_stream other = ovfile::read_stream(table_);
  EXPECT_EQ(stream_.next()->length, 4);
  EXPECT_EQ(other.next()->length, 10);
  double value = 0;
  EXPECT_EQ(table_->GetColumnAsDouble(2, &value), S_OK);
  EXPECT_EQ(value, 7);
}

TEST_F(StreamLifetime, MemoryThatRunsOutIsAnErrorThatPasses) {
  make_holes(100'000, true, "large.ovt");
  stream_ = ovfile::read_stream(table_);
  deny_allocations_of(262'144);
  ArrowArray batch{};
  EXPECT_EQ(stream_.get()->get_next(stream_.get(), &batch), ENOMEM);
  deny_allocations_of(0);
  EXPECT_EQ(batch.release, nullptr);
  EXPECT_STREQ(stream_.get()->get_last_error(stream_.get()), "out of memory");
  first_ = stream_.next();
  EXPECT_EQ(cell_at(*first_->children[1], {"g", "", false, {}, ""}, 0), double_cell(1));
}

TEST_F(StreamLifetime, AFileThatWasCutByOthersIsAnErrorWithItsWords) {
  make_holes(30'000, true, "cut.ovt");
  ASSERT_EQ(table_->FlushChanges(), S_OK);
  std::filesystem::resize_file(path("cut.ovt"), 4096 * 120);
  stream_ = ovfile::read_stream(table_);
  int code = 0;
  std::int64_t rows = 0;
  for (;;) {
    ovfile::arrow_array batch;
    code = stream_.get()->get_next(stream_.get(), batch.out());
    if (code != 0 || !batch) break;
    rows += batch->length;
  }
  EXPECT_EQ(code, EIO);
  EXPECT_LT(rows, 30'000);
  const std::string words = stream_.get()->get_last_error(stream_.get());
  EXPECT_NE(words.find("OvFile Error: cache failed to read an entire page."), std::string::npos) << words;
  double value = 0;
  EXPECT_EQ(table_->GetFirstRow(), S_OK);
  EXPECT_EQ(table_->GetColumnAsDouble(2, &value), S_OK);
  EXPECT_EQ(value, 1);
}

}  // namespace
}  // namespace ovtest
