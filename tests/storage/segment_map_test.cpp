#include "storage/segment_map.h"

#include <gtest/gtest.h>

#include "storage/file_error.h"
#include "support/failing_files.h"
#include "support/file_bytes.h"
#include "support/scratch_folder.h"

namespace {

using ovtest::call;
using ovtest::fate;
using ovtest::message_of;
using ovtest::with_failing_code;

constexpr std::size_t page = 2048;
constexpr ovf::segment_need whole{page, page};

ovtest::bytes numbered_pages(std::size_t pages) {
  ovtest::bytes content(pages * page);
  for (std::size_t i = 0; i < content.size(); ++i) content[i] = static_cast<unsigned char>('a' + i / page);
  return content;
}

class SegmentMap : public ::testing::Test {
 protected:
  SegmentMap() : path_(folder_ / "pages") { ovtest::write_bytes(path_, numbered_pages(4)); }

  std::unique_ptr<ovf::file> open(ovf::open_mode mode = ovf::open_mode::edit) {
    auto opened = ovf::files().open(ovtest::wide_path(path_), mode);
    EXPECT_NE(opened, nullptr);
    return opened;
  }
  ovtest::bytes content() const { return ovtest::read_bytes(path_); }

  ovtest::scratch_folder folder_;
  std::filesystem::path path_;
  ovtest::failing_files files_;
};

TEST_F(SegmentMap, StartsEmptyWithTheWholeBufferInUse) {
  const auto target = open();
  ovf::fileSegmentMap<page> map(target.get(), true);
  EXPECT_FALSE(map.valid());
  EXPECT_FALSE(map.dirty());
  EXPECT_EQ(map.extent(), page);
  EXPECT_EQ(map.segment(), map.none);
}

TEST_F(SegmentMap, LoadsTheBytesOfASegment) {
  const auto target = open();
  ovf::fileSegmentMap<page> map(target.get(), true);
  map.load(2, whole, page, 0);
  EXPECT_TRUE(map.valid());
  EXPECT_EQ(map.data()[0], std::byte{'c'});
  EXPECT_EQ(map.data()[page - 1], std::byte{'c'});
}

/// Between the question for the size and the way to a page.
TEST_F(SegmentMap, AFileThatAnotherProgramMakesLongerOrShorterIsReadAndWrittenInItsPlaces) {
  for (const std::size_t pages : {5U, 3U}) {
    ovtest::write_bytes(path_, numbered_pages(4));
    const auto target = open();
    ovf::fileSegmentMap<page> map(target.get(), true);
    files_.decide = [&](call kind, const ovf::wide&) {
      if (kind == call::seek) std::filesystem::resize_file(path_, pages * page);
      return fate::works;
    };
    map.load(2, whole, page, 0);
    EXPECT_EQ(map.data()[0], std::byte{'c'});
    std::filesystem::resize_file(path_, 4 * page);
    map.data()[0] = std::byte{'!'};
    map.mark_changed(0, 1);
    map.flush();
    EXPECT_EQ(content()[2 * page], '!');
    files_.fail_nothing();
  }
}

TEST_F(SegmentMap, LoadingTheCurrentSegmentReadsNothingAndOnlyWidensTheExtent) {
  const auto target = open();
  ovf::fileSegmentMap<page> map(target.get(), true);
  map.load(1, whole, 100, 0);
  const int reads = files_.count(call::read);
  map.load(1, whole, 300, 0);
  EXPECT_EQ(map.extent(), 300U);
  map.load(1, whole, 200, 0);
  EXPECT_EQ(map.extent(), 300U);
  EXPECT_EQ(files_.count(call::read), reads);
}

TEST_F(SegmentMap, AnEmptySegmentIsNotReadAndTheOneBeforeIsWritten) {
  const auto target = open();
  ovf::fileSegmentMap<page> map(target.get(), true);
  map.load(1, whole, page, 0);
  map.data()[5] = std::byte{'!'};
  map.mark_changed();
  const int reads = files_.count(call::read);
  map.begin_empty(2, page, 0);
  EXPECT_EQ(files_.count(call::read), reads);
  EXPECT_EQ(content()[page + 5], '!');
  EXPECT_TRUE(map.valid());
  EXPECT_FALSE(map.dirty());
  EXPECT_FALSE(map.ends_early());
  EXPECT_EQ(map.segment(), 2U);
  EXPECT_EQ(map.extent(), page);
  for (std::size_t i = 0; i < page; ++i) ASSERT_EQ(map.data()[i], std::byte{0}) << i;
}

TEST_F(SegmentMap, ASegmentThatCannotBeWrittenStaysWhenAnEmptyOneIsWanted) {
  const auto target = open();
  ovf::fileSegmentMap<page> map(target.get(), true);
  map.load(1, whole, page, 0);
  map.data()[5] = std::byte{'!'};
  map.mark_changed();
  files_.fail_nth(call::write, 1);
  EXPECT_THROW(map.begin_empty(2, page, 0), ovf::file_error);
  EXPECT_EQ(map.segment(), 1U);
  EXPECT_TRUE(map.dirty());
  EXPECT_EQ(map.data()[5], std::byte{'!'});
}

TEST_F(SegmentMap, AMapWithoutAFileIgnoresLoadAndFlush) {
  ovf::fileSegmentMap<page> map;
  map.load(3, whole, page, 0);
  map.mark_changed();
  map.flush();
  EXPECT_FALSE(map.valid());
}

TEST_F(SegmentMap, LoadingNoSegmentOnlyPrepares) {
  const auto target = open();
  ovf::fileSegmentMap<page> map(target.get(), true);
  map.load(map.none, whole, 512, 64);
  EXPECT_FALSE(map.valid());
  EXPECT_EQ(map.extent(), 512U);
  EXPECT_EQ(files_.count(call::read), 0);
}

TEST_F(SegmentMap, AFlushOfPartsWritesNothingBesideThem) {
  const auto target = open();
  ovf::fileSegmentMap<page> map(target.get(), true);
  map.load(1, whole, page, 0);
  std::fill_n(map.data(), page, std::byte{'!'});
  map.mark_changed(16, 8);
  map.mark_changed(32, 16);
  map.mark_changed(48, 8);
  map.mark_changed(page - 8, 8);
  EXPECT_TRUE(map.dirty());
  const int writes = files_.count(call::write);
  map.flush();
  EXPECT_FALSE(map.dirty());
  EXPECT_EQ(files_.count(call::write), writes + 3);
  ovtest::bytes expected = numbered_pages(4);
  std::fill_n(expected.begin() + page + 16, 8, '!');
  std::fill_n(expected.begin() + page + 32, 24, '!');
  std::fill_n(expected.begin() + 2 * page - 8, 8, '!');
  EXPECT_EQ(content(), expected);
}

TEST_F(SegmentMap, PartsThatCouldNotBeWrittenAreWrittenLater) {
  const auto target = open();
  ovf::fileSegmentMap<page> map(target.get(), true);
  map.load(1, whole, page, 0);
  map.data()[8] = std::byte{'!'};
  map.data()[64] = std::byte{'!'};
  map.mark_changed(8, 8);
  map.mark_changed(64, 8);
  files_.fail_nth(call::write, 2);
  EXPECT_THROW(map.flush(), ovf::file_error);
  EXPECT_TRUE(map.dirty());
  files_.fail_nothing();
  map.flush();
  EXPECT_EQ(content()[page + 8], '!');
  EXPECT_EQ(content()[page + 64], '!');
}

TEST_F(SegmentMap, AFlushWritesFromTheWriteStartToTheExtent) {
  const auto target = open();
  {
    ovf::fileSegmentMap<page> map(target.get(), true);
    map.load(1, whole, 10, 4);
    std::fill_n(map.data(), page, std::byte{'!'});
    map.mark_changed();
    map.flush();
    EXPECT_FALSE(map.dirty());
  }
  ovtest::bytes expected = numbered_pages(4);
  std::fill(expected.begin() + page + 4, expected.begin() + page + 10, '!');
  EXPECT_EQ(content(), expected);
}

TEST_F(SegmentMap, SwitchingSegmentsAndReleaseWriteChangesBack) {
  const auto target = open();
  {
    ovf::fileSegmentMap<page> map(target.get(), true);
    map.load(0, whole, page, 0);
    map.data()[0] = std::byte{'1'};
    map.mark_changed();
    map.load(3, whole, page, 0);
    map.data()[0] = std::byte{'2'};
    map.mark_changed();
  }
  ovtest::bytes expected = numbered_pages(4);
  expected[0] = '1';
  expected[3 * page] = '2';
  EXPECT_EQ(content(), expected);
}

TEST_F(SegmentMap, ReleaseFlushesTheNextMapToo) {
  const auto target = open();
  ovf::fileSegmentMap<page> second(target.get(), true);
  second.load(2, whole, page, 0);
  second.data()[5] = std::byte{'#'};
  second.mark_changed();
  {
    ovf::fileSegmentMap<page> first(target.get(), true);
    first.next = &second;
  }
  EXPECT_FALSE(second.dirty());
  EXPECT_EQ(content()[2 * page + 5], '#');
}

TEST_F(SegmentMap, AReadOnlyMapNeverWrites) {
  const auto target = open(ovf::open_mode::read);
  {
    ovf::fileSegmentMap<page> map(target.get(), false);
    map.load(0, whole, page, 0);
    map.data()[0] = std::byte{'!'};
    map.mark_changed();
    EXPECT_FALSE(map.dirty());
    map.flush();
  }
  EXPECT_EQ(content(), numbered_pages(4));
  EXPECT_EQ(files_.count(call::write), 0);
}

TEST_F(SegmentMap, AShortSegmentServesWhatIsWhollyThereAndNamesBothNumbersForTheRest) {
  const auto target = open();
  ovf::fileSegmentMap<4096> map(target.get(), true);
  ovtest::bytes three_pages = numbered_pages(3);
  ovtest::write_bytes(path_, three_pages);
  map.load(1, {4096, 2048}, 2048, 0);
  EXPECT_TRUE(map.ends_early());
  EXPECT_EQ(map.data()[0], std::byte{'c'});
  EXPECT_EQ(map.data()[2048], std::byte{0});
  EXPECT_EQ(message_of([&] {
              map.load(1, {4096, 4096}, 4096, 0);
            }),
            "OvFile Error: cache failed to read an entire page. (2048 bytes read instead of 4096)");
  EXPECT_EQ(map.extent(), 2048U);
}

TEST_F(SegmentMap, FewerBytesThanRequiredIsAnErrorOnBothChannels) {
  const auto target = open();
  ovf::fileSegmentMap<page> map(target.get(), true);
  const ovtest::debug_listener debug;
  const std::string words =
      "OvFile Error: cache failed to read an entire page. (0 bytes read instead of 2048)";
  EXPECT_EQ(message_of([&] { map.load(4, whole, page, 0); }), words);
  EXPECT_TRUE(debug.heard(words));
  EXPECT_FALSE(map.valid());
}

TEST_F(SegmentMap, EnoughForTheLowerBoundIsAccepted) {
  ovtest::bytes short_file = numbered_pages(2);
  short_file.resize(page + 100);
  ovtest::write_bytes(path_, short_file);
  const auto target = open();
  ovf::fileSegmentMap<page> map(target.get(), true);
  map.load(1, {100, page}, page, 0);
  EXPECT_EQ(map.data()[99], std::byte{'b'});
  EXPECT_EQ(map.data()[100], std::byte{0});
  EXPECT_FALSE(map.ends_early());
}

TEST_F(SegmentMap, AFailedReadIsReported) {
  const auto target = open();
  ovf::fileSegmentMap<page> map(target.get(), true);
  const ovtest::debug_listener debug;
  files_.fail_nth(call::read, 1);
  const std::string words = with_failing_code("OvFile Error: cache failed to read file.");
  EXPECT_EQ(message_of([&] { map.load(0, whole, page, 0); }), words);
  EXPECT_TRUE(debug.heard(words));
  map.load(0, whole, page, 0);
  EXPECT_EQ(map.data()[0], std::byte{'a'});
}

TEST_F(SegmentMap, AFailedOrShortWriteIsReportedAndNothingIsForgotten) {
  const auto target = open();
  for (const fate how : {fate::fails, fate::falls_short}) {
    ovf::fileSegmentMap<page> map(target.get(), true);
    const ovtest::debug_listener debug;
    map.load(0, whole, page, 0);
    std::fill_n(map.data(), page, std::byte{'?'});
    map.mark_changed();
    files_.fail_nth(call::write, 1, how);
    const std::string words = with_failing_code("OvFile Error: doFlush failed to write an entire page.");
    EXPECT_EQ(message_of([&] { map.flush(); }), words);
    EXPECT_TRUE(debug.heard(words));
    EXPECT_TRUE(map.dirty());
    map.flush();
    EXPECT_EQ(content()[page - 1], '?');
  }
}

TEST_F(SegmentMap, AReleaseSwallowsAFailedWrite) {
  const auto target = open();
  {
    ovf::fileSegmentMap<page> map(target.get(), true);
    map.load(0, whole, page, 0);
    map.data()[0] = std::byte{'!'};
    map.mark_changed();
    files_.fail_all(call::write);
  }
  EXPECT_EQ(content(), numbered_pages(4));
}

TEST_F(SegmentMap, AnUnknownFileSizeAndAFailedSeekAreThrownButNotSentToTheDebugChannel) {
  const auto target = open();
  ovf::fileSegmentMap<page> map(target.get(), true);
  const ovtest::debug_listener debug;
  files_.fail_nth(call::size, 1);
  EXPECT_EQ(message_of([&] { map.load(0, whole, page, 0); }), "cannot retrieve file size");
  files_.fail_nth(call::seek, 1);
  EXPECT_EQ(message_of([&] { map.load(0, whole, page, 0); }), "cannot move to page in file");
  EXPECT_TRUE(debug.lines().empty());
}

}  // namespace
