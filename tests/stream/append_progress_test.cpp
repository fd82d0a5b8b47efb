// A host hears how many rows of a stream are in, and can stop it.
#include "stream_host.h"
#include "table/progress_sink.h"

namespace ovtest {
namespace {

class StreamProgress : public StreamHost, public testing::WithParamInterface<bool> {
 protected:
  static constexpr int batches = 4;
  static constexpr LONG batch_rows = 50'000;

  void SetUp() override {
    make_holes(500, GetParam());
    ASSERT_EQ(table_->Close(), S_OK);
    before_ = content();
  }
  void start() {
    write_bytes(path(), before_);
    open();
    ASSERT_EQ(table_->GetRowAt(9), S_OK);
    ASSERT_EQ(hear(&sink_), S_OK);
    sink_.heard.clear();
  }
  HRESULT hear(IOvProgress* sink) {
    return ovfile::pointer<IOvTable>(table_.get()).query<IOvProgressSource>()->SetProgress(sink);
  }
  HRESULT append_many() {
    made_stream from(std::vector<made_batch>(
        batches, {numbers("DEPTH", "g", std::vector<double>(static_cast<std::size_t>(batch_rows), 9))}));
    return append(from);
  }
  void expect_untouched() {
    EXPECT_EQ(rows(), 500);
    LONG current = 0;
    EXPECT_EQ(table_->GetCurrentRow(&current), S_OK);
    EXPECT_EQ(current, 9);
    EXPECT_TRUE(content() == before_);
    ASSERT_EQ(table_->Close(), S_OK);
    EXPECT_TRUE(content() == before_);
  }

  progress_sink sink_;
  bytes before_;
};

INSTANTIATE_TEST_SUITE_P(both, StreamProgress, testing::Bool(),
                         [](const auto& is_double) { return is_double.param ? "double" : "single"; });

TEST_P(StreamProgress, TellsRowsOfATotalThatNobodyKnows) {
  start();
  sink_.meanwhile = [this] { EXPECT_GE(sink_.references, 2U); };
  ASSERT_EQ(append_many(), S_OK);
  ASSERT_GE(sink_.heard.size(), 6U);
  EXPECT_EQ(sink_.heard.front().first, 0);
  LONGLONG before = 0;
  for (const auto& [done, total] : sink_.heard) {
    EXPECT_GE(done, before);
    EXPECT_EQ(total, 0);
    before = done;
  }
  EXPECT_EQ(before, batches * batch_rows);
  EXPECT_EQ(rows(), 500 + batches * batch_rows);
  EXPECT_EQ(sink_.references, 2U);
  ASSERT_EQ(hear(nullptr), S_OK);
  EXPECT_EQ(sink_.references, 1U);
}

TEST_P(StreamProgress, StoppedItLeavesTheTableAsItWas) {
  HRESULT status = E_ABORT;
  for (std::size_t n = 1; status != S_OK; ++n) {
    ASSERT_LT(n, 1000U);
    SCOPED_TRACE("stopped at call " + std::to_string(n));
    start();
    sink_.stop_at = n;
    sink_.answer = n % 2 == 0 ? E_FAIL : S_FALSE;
    status = append_many();
    if (status == S_OK) {
      EXPECT_GE(n, 6U);
      EXPECT_EQ(rows(), 500 + batches * batch_rows);
      continue;
    }
    EXPECT_EQ(status, E_ABORT);
    EXPECT_EQ(take_error_text(), "Append failed, it was stopped");
    EXPECT_EQ(sink_.heard.size(), n) << "nothing is heard any more";
    expect_untouched();
  }
  ASSERT_EQ(hear(nullptr), S_OK);
}

TEST_P(StreamProgress, AListenerThatClosesTheTableHarmsNothing) {
  for (std::size_t n = 1; n <= 6; ++n) {
    SCOPED_TRACE(n);
    start();
    sink_.meanwhile = [this, n] {
      if (sink_.heard.size() == n) table_->Close();
    };
    EXPECT_EQ(append_many(), E_FAIL);
    if (n > 1) {
      EXPECT_EQ(take_error_text(),
                "Append failed, the table was closed or changed while rows were appended to it");
    }
    EXPECT_TRUE(content() == before_);
  }
  sink_.meanwhile = {};
  ASSERT_EQ(hear(nullptr), S_OK);
}

TEST_P(StreamProgress, HearsNothingOfRowsThatAreRefused) {
  start();
  made_stream from({{numbers("DEPTH", "g", std::vector<double>(40'000, 9))}, {texts("DEPTH", {"x"})}});
  from.fails_at = 1;
  EXPECT_EQ(append(from), E_FAIL);
  EXPECT_EQ(take_error_text(), "Append failed, the stream failed");
  for (const auto& [done, total] : sink_.heard) EXPECT_LE(done, 40'000);
  expect_untouched();
  ASSERT_EQ(hear(nullptr), S_OK);
}

}  // namespace
}  // namespace ovtest
