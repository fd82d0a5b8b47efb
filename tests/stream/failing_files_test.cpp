// Files that fail under a stream, at one call after the other.
#include "made_stream.h"
#include "read_columns.h"
#include "table/table_host.h"

namespace {

using ovtest::call;
using ovtest::fate;
using ovtest::made_batch;
using ovtest::made_stream;
using ovtest::numbers;

class StreamFailures : public ovtest::TableHost {
 protected:
  /// Rows enough for several writes, appended; `rows` are there before.
  HRESULT append_many() {
    std::vector<double> depths(30'000, 5);
    made_stream from(std::vector<made_batch>(3, made_batch{numbers("DEPTH", "g", depths)}));
    LONG appended = -1;
    const HRESULT status = ovfile::streams_of(table_)->Append(&from.stream, &appended);
    EXPECT_EQ(from.alive, 0);
    EXPECT_EQ(appended, status == S_OK ? 90'000 : 0);
    return status;
  }

  /// Lets the n-th call of the kind fail, n = 1, 2, 3 …, until all goes well.
  void fail_each(call kind, fate how, bool is_double) {
    int refused = 0;
    for (int nth = 1;; ++nth) {
      ovtest::failing_files files;
      make_rows(300, is_double);
      const ovtest::bytes before = content();
      ASSERT_EQ(open(), S_OK);
      files.fail_nth(kind, nth, how);
      const int calls = files.count(kind);
      const HRESULT status = append_many();
      const bool is_untouched = files.count(kind) - calls < nth;
      files.fail_nothing();
      LONG rows = 0;
      ASSERT_EQ(table_->GetRowCount(&rows), S_OK);
      EXPECT_EQ(rows, status == S_OK ? 90'300 : 300) << nth;
      ASSERT_EQ(table_->GetFirstRow(), S_OK);
      EXPECT_EQ(depth(), 1) << nth;
      ASSERT_EQ(table_->Close(), S_OK);
      if (is_untouched) break;
      if (status == S_OK) continue;  // the current row alone could not be read again
      ++refused;
      EXPECT_TRUE(content() == before) << nth;
    }
    EXPECT_GT(refused, 1);
  }
};

TEST_F(StreamFailures, AWriteThatFailsLeavesTheRowsThatWereThere) {
  for (const bool is_double : {true, false}) fail_each(call::write, fate::fails, is_double);
}

TEST_F(StreamFailures, AWriteThatFallsShortLeavesTheRowsThatWereThere) {
  fail_each(call::write, fate::falls_short, true);
}

TEST_F(StreamFailures, ASeekThatFailsLeavesTheRowsThatWereThere) { fail_each(call::seek, fate::fails, true); }

TEST_F(StreamFailures, TheWordsAreTheEngines) {
  ovtest::failing_files files;
  make_rows(3);
  ASSERT_EQ(open(), S_OK);
  files.fail_all(call::write);
  EXPECT_REPORT(append_many(),
                ovtest::with_failing_code("OvFile Error: Add Page failed to write an entire page."));
}

TEST_F(StreamFailures, AReadThatFailsIsAnErrorAndMayBeTriedAgain) {
  ovtest::failing_files files;
  make_rows(60'000);
  ASSERT_EQ(open(), S_OK);
  ovfile::arrow_stream stream = ovfile::read_stream(table_);
  files.fail_all(call::read);
  ArrowArray batch{};
  EXPECT_EQ(stream.get()->get_next(stream.get(), &batch), EIO);
  EXPECT_EQ(batch.release, nullptr);
  EXPECT_EQ(stream.get()->get_last_error(stream.get()),
            ovtest::with_failing_code("OvFile Error: cache failed to read file."));
  files.fail_nothing();
  std::int64_t rows = 0;
  for (const ovfile::arrow_array& each : stream) rows += each->length;
  EXPECT_EQ(rows, 60'000);
  ASSERT_EQ(table_->GetFirstRow(), S_OK);
  EXPECT_EQ(depth(), 1);
}

}  // namespace
