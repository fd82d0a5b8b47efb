// Streams whose own code calls into the table that takes their rows in: the rows of the append never count,
// and nothing of them stays in the file.
#include "stream_host.h"

namespace ovtest {
namespace {

constexpr const char* changed_meanwhile =
    "Append failed, the table was closed or changed while rows were appended to it";

/// A call into the table at hand, and what it leaves in a table of 200 holes.
struct table_call {
  const char* name;
  std::function<void(IOvTable&, const std::filesystem::path&)> make;
};

std::ostream& operator<<(std::ostream& out, const table_call& call) { return out << call.name; }

std::vector<table_call> calls() {
  using path = const std::filesystem::path&;
  const auto open = [](IOvTable& table, path file) { EXPECT_EQ(table.Open(path_text(file).get(), 0), S_OK); };
  return {
      {"Close", [](IOvTable& table, path) { EXPECT_EQ(table.Close(), S_OK); }},
      {"Open", open},
      {"CloseAndOpen",
       [open](IOvTable& table, path file) {
         EXPECT_EQ(table.Close(), S_OK);
         open(table, file);
       }},
      {"OpenAnother",
       [](IOvTable& table, path file) {
         EXPECT_EQ(table.Open(path_text(file.parent_path() / "other.ovt").get(), 0), S_OK);
       }},
      {"SetColumn", [](IOvTable& table, path) { EXPECT_EQ(table.SetColumn(2, variant(7.5).get()), S_OK); }},
      {"AddRow", [](IOvTable& table, path) { EXPECT_EQ(table.AddRow(), S_OK); }},
      {"ReduceRowCountTo", [](IOvTable& table, path) { EXPECT_EQ(table.ReduceRowCountTo(100), S_OK); }},
      {"SetColumnName",
       [](IOvTable& table, path) { EXPECT_EQ(table.SetColumnName(2, bstr("AT").get()), S_OK); }},
      {"SetColumnDefaultDouble",
       [](IOvTable& table, path) { EXPECT_EQ(table.SetColumnDefaultDouble(2, 4), S_OK); }},
      {"AddImplicitNumericColumnDouble",
       [](IOvTable& table, path) {
         EXPECT_EQ(table.AddImplicitNumericColumnDouble(bstr("NEW").get(), 1), S_OK);
       }},
  };
}

class StreamProducers : public StreamHost, public testing::WithParamInterface<std::tuple<table_call, bool>> {
 protected:
  static constexpr int holes_there = 200;
  static constexpr std::size_t batches = 5;

  void SetUp() override {
    make_holes(3, is_double(), "other.ovt");
    make_holes(holes_there, is_double());
    ASSERT_EQ(table_->Close(), S_OK);
    before_ = content();
    open();
    ASSERT_EQ(table_->GetRowAt(150), S_OK);
    call();
    table_->Close();
    after_ = content();
  }
  static bool is_double() { return std::get<1>(GetParam()); }
  void call() { std::get<0>(GetParam()).make(*table_, path()); }
  /// The file is what the call by itself would have left.
  void expect_the_call_alone() {
    table_->Close();
    EXPECT_TRUE(content() == after_) << content().size() << " bytes, expected " << after_.size();
  }
  /// Rows for several writes in every batch.
  static made_stream& large(std::optional<made_stream>& made) {
    return made.emplace(
        std::vector<made_batch>(batches, {numbers("DEPTH", "g", std::vector<double>(40'000, 9))}));
  }
  void start() {
    write_bytes(path(), before_);
    open();
    ASSERT_EQ(table_->GetRowAt(150), S_OK);
  }
  void expect_changed_since(made_stream& from) {
    EXPECT_EQ(append(from), E_FAIL);
    EXPECT_EQ(take_error_text(), changed_meanwhile);
    expect_the_call_alone();
  }

  bytes before_;
  bytes after_;
};

INSTANTIATE_TEST_SUITE_P(Calls, StreamProducers,
                         testing::Combine(testing::ValuesIn(calls()), testing::Bool()), [](const auto& each) {
                           return std::string(std::get<0>(each.param).name) +
                                  (std::get<1>(each.param) ? "Double" : "Single");
                         });

TEST_P(StreamProducers, ForEachBatch) {
  for (std::size_t at = 1; at <= batches + 1; ++at) {
    SCOPED_TRACE(at);
    start();
    std::optional<made_stream> made;
    made_stream& from = large(made);
    std::size_t asked = 0;
    from.meanwhile = [&] {
      if (++asked == at) call();
    };
    expect_changed_since(from);
    EXPECT_EQ(asked, at);
  }
}

TEST_P(StreamProducers, ForTheTypes) {
  start();
  std::optional<made_stream> made;
  made_stream& from = large(made);
  from.at_types = [this] { call(); };
  expect_changed_since(from);
}

TEST_P(StreamProducers, WhenTypesOrBatchesAreReleased) {
  // The types go first, then each batch; the stream itself is released when all is over.
  for (std::size_t at = 1; at <= batches + 1; ++at) {
    SCOPED_TRACE(at);
    start();
    std::optional<made_stream> made;
    made_stream& from = large(made);
    std::size_t released = 0;
    from.at_release = [&] {
      // Columns come before their batch.
      if (++released == 2 * at) call();
    };
    expect_changed_since(from);
  }
}

TEST_P(StreamProducers, WhenTheStreamIsReleased) {
  start();
  std::optional<made_stream> made;
  made_stream& from = large(made);
  from.at_release = [&] {
    if (from.alive == 0) call();
  };
  EXPECT_EQ(append(from), S_OK);
  table_->Close();
  open();
  LONG rows = 0;
  ASSERT_EQ(table_->GetRowCount(&rows), S_OK);
  const bool is_cut = std::string(std::get<0>(GetParam()).name) == "ReduceRowCountTo";
  const bool is_longer = std::string(std::get<0>(GetParam()).name) == "AddRow";
  EXPECT_EQ(rows, is_cut ? 100 : 200'200 + (is_longer ? 1 : 0));
}

TEST_P(StreamProducers, WhenTheReasonOfAFailureIsAsked) {
  start();
  std::optional<made_stream> made;
  made_stream& from = large(made);
  from.fails_at = 3;
  from.at_words = [this] { call(); };
  EXPECT_EQ(append(from), E_FAIL);
  EXPECT_EQ(take_error_text(), "Append failed, the stream failed");
  expect_the_call_alone();
}

class StreamOfItself : public StreamHost, public testing::WithParamInterface<bool> {};

INSTANTIATE_TEST_SUITE_P(both, StreamOfItself, testing::Bool(),
                         [](const auto& is_double) { return is_double.param ? "double" : "single"; });

TEST_P(StreamOfItself, IsAppendedOverManyPages) {
  make_holes(30'100, GetParam());
  OvStreamRequest request;
  for (const LONG rows : {0, 7000}) {
    make_holes(30'100, GetParam());
    request.rowsPerBatch = rows;
    ASSERT_EQ(table_->GetRowAt(30'000), S_OK);
    EXPECT_EQ(ovfile::append_stream(table_, ovfile::read_stream(table_, request)), 30'100);
    EXPECT_EQ(this->rows(), 60'200);
    const read_table found = read();
    for (std::size_t row = 0; row < 60'200; ++row) {
      const std::size_t number = row % 30'100 + 1;
      ASSERT_EQ(found.cells[0][row], text_cell_of("H" + std::to_string(number)));
      ASSERT_EQ(found.cells[1][row], GetParam() ? double_cell(static_cast<double>(number))
                                                : float_cell(static_cast<float>(number)));
    }
    LONG current = 0;
    EXPECT_EQ(table_->GetCurrentRow(&current), S_OK);
    EXPECT_EQ(current, 30'000);
  }
}

}  // namespace
}  // namespace ovtest
