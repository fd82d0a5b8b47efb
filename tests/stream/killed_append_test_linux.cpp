// A process appends a stream and ends at one call of the file system after the other, or in the stream's own
// code: whoever opens the table afterwards finds the rows that it had, or all of them.
#include "made_stream.h"
#include "support/killed_process_linux.h"
#include "table/table_host.h"

namespace {

using ovtest::failing_files;
using ovtest::finished;
using ovtest::killed;
using ovtest::made_batch;
using ovtest::made_stream;
using ovtest::moment;

constexpr int rows_before = 300;
constexpr int batches = 3;
constexpr int batch_rows = 9'000;

class KilledAppends : public ovtest::TableHost, public testing::WithParamInterface<bool> {
 protected:
  void SetUp() override {
    make_rows(rows_before, GetParam());
    before_ = content();
  }

  /// DEPTH goes on where the rows before end.
  static std::vector<made_batch> rows_behind() {
    std::vector<made_batch> all;
    double depth = rows_before;
    for (int batch = 0; batch < batches; ++batch) {
      std::vector<double> depths(batch_rows);
      for (double& each : depths) each = ++depth;
      all.push_back({ovtest::numbers("DEPTH", "g", depths)});
    }
    return all;
  }
  bool append_and_close(const std::function<void()>& meanwhile = {}) {
    made_stream from(rows_behind());
    from.meanwhile = meanwhile;
    LONG rows = 0;
    return open() == S_OK && ovfile::streams_of(table_)->Append(&from.stream, &rows) == S_OK &&
           rows == batches * batch_rows && table_->Close() == S_OK;
  }
  int run(int n, moment when) {
    return ovtest::in_own_process([&] {
      failing_files stopping;
      ovtest::end_at(stopping, n, when);
      return append_and_close();
    });
  }

  /// The rows that count are the old ones, or all; an append that follows works as ever.
  void expect_whole(bool may_be_new) {
    const ovtest::bytes now = content();
    ASSERT_GE(now.size(), before_.size());
    ASSERT_EQ(open(), S_OK);
    LONG rows = 0;
    ASSERT_EQ(table_->GetRowCount(&rows), S_OK);
    const bool is_new = rows == rows_before + batches * batch_rows;
    ASSERT_TRUE(rows == rows_before || (may_be_new && is_new)) << rows;
    if (!is_new) ++old_;
    expect_depths(rows);
    ASSERT_EQ(table_->Close(), S_OK);
    if (is_new) return;
    ASSERT_TRUE(append_and_close());
    ASSERT_EQ(open(), S_OK);
    expect_depths(rows_before + batches * batch_rows);
    ASSERT_EQ(table_->Close(), S_OK);
  }
  void expect_depths(LONG rows) {
    double expected = 0;
    auto stream = ovfile::read_stream(table_);
    for (const ovfile::arrow_array& batch : stream) {
      const ArrowArray& depths = *batch->children[1];
      for (std::int64_t i = 0; i < depths.length; ++i) {
        const double found = GetParam() ? ovfile::values_of<double>(depths)[i]
                                        : static_cast<double>(ovfile::values_of<float>(depths)[i]);
        ASSERT_EQ(found, ++expected);
      }
    }
    EXPECT_EQ(expected, rows);
  }

  ovtest::bytes before_;
  int old_ = 0;
};

INSTANTIATE_TEST_SUITE_P(both, KilledAppends, testing::Bool(),
                         [](const auto& is_double) { return is_double.param ? "double" : "single"; });

TEST_P(KilledAppends, AtACallOfTheFileSystem) {
  for (const moment when : {moment::before_the_call, moment::in_the_call}) {
    int status = killed;
    old_ = 0;
    for (int n = 1; status != finished; ++n) {
      ASSERT_LT(n, 1000);
      ovtest::write_bytes(path(), before_);
      status = run(n, when);
      // A write that falls short may be the last call of all, which is told.
      const bool is_told = when == moment::in_the_call && status == ovtest::refused;
      ASSERT_TRUE(status == killed || status == finished || is_told) << status;
      SCOPED_TRACE("stopped at call " + std::to_string(n));
      expect_whole(true);
    }
    EXPECT_GT(old_, 10);
  }
}

TEST_P(KilledAppends, BetweenBatches) {
  for (int at = 1; at <= batches + 1; ++at) {
    SCOPED_TRACE(at);
    ovtest::write_bytes(path(), before_);
    const int status = ovtest::in_own_process([&] {
      int asked = 0;
      return append_and_close([&] {
        if (++asked == at) ::_exit(killed);
      });
    });
    ASSERT_EQ(status, killed);
    ovtest::bytes now = content();
    now.resize(before_.size());
    EXPECT_TRUE(now == before_) << "nothing but bytes behind the counted pages";
    expect_whole(false);
  }
}

}  // namespace
