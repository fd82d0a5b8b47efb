// What C++ hosts hold streams and their batches with.
#include "stream_host.h"

namespace ovtest {
namespace {

class StreamOwners : public StreamHost {};

TEST_F(StreamOwners, ABatchIsReleasedOnceWhereverItWasMovedTo) {
  made_stream from({{numbers<double>("DEPTH", "g", {1, 2})}});
  {
    ovfile::arrow_stream stream(std::move(from.stream));
    EXPECT_EQ(from.stream.release, nullptr);
    ovfile::arrow_array first = stream.next();
    ovfile::arrow_array second(std::move(first));
    EXPECT_FALSE(first);
    ASSERT_TRUE(second);
    EXPECT_EQ(ovfile::values_of<double>(*second->children[0])[1], 2);
    first = std::move(second);
    EXPECT_TRUE(first);
    EXPECT_GT(from.alive, 1);
  }
  EXPECT_EQ(from.alive, 0);
}

TEST_F(StreamOwners, ARangeGoesOverTheBatches) {
  make_holes(10);
  OvStreamRequest request;
  request.rowsPerBatch = 3;
  auto stream = ovfile::read_stream(table_, request);
  std::vector<std::int64_t> lengths;
  std::vector<ovfile::arrow_array> kept;
  for (ovfile::arrow_array& batch : stream) {
    lengths.push_back(batch->length);
    kept.push_back(std::move(batch));
  }
  EXPECT_EQ(lengths, (std::vector<std::int64_t>{3, 3, 3, 1}));
  EXPECT_EQ(ovfile::values_of<double>(*kept[3]->children[1])[0], 10);
}

TEST_F(StreamOwners, FailuresAreThrown) {
  make_holes(1);
  OvStreamRequest request;
  request.firstRow = 0;
  try {
    (void)ovfile::read_stream(table_, request);
    FAIL() << "a bad request was met";
  } catch (const ovfile::error& failure) {
    EXPECT_EQ(failure.status(), E_INVALIDARG);
    EXPECT_STREQ(failure.what(), "Read failed, the first row cannot be 0");
  }
  auto stream = ovfile::read_stream(table_);
  ASSERT_EQ(table_->Close(), S_OK);
  EXPECT_THROW((void)stream.next(), ovfile::error);
}

TEST_F(StreamOwners, AppendTakesTheStream) {
  make_holes(2);
  made_stream from({{numbers<double>("DEPTH", "g", {7, 8, 9})}});
  EXPECT_EQ(ovfile::append_stream(table_, ovfile::arrow_stream(std::move(from.stream))), 3);
  EXPECT_EQ(from.alive, 0);
  EXPECT_EQ(rows(), 5);
}

TEST_F(StreamOwners, AStreamWithoutWordsNamesItsCode) {
  made_stream from({{numbers<double>("DEPTH", "g", {7})}});
  from.fails_at = 0;
  ovfile::arrow_stream stream(std::move(from.stream));
  try {
    (void)stream.next();
    FAIL() << "a failure was not thrown";
  } catch (const ovfile::error& failure) {
    EXPECT_STREQ(failure.what(), "the stream failed with code 5");
  }
}

}  // namespace
}  // namespace ovtest
