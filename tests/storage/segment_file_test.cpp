#include "storage/segment_file.h"

#include <gtest/gtest.h>

#include "storage/random_access_file.h"
#include "support/failing_files.h"
#include "support/file_bytes.h"
#include "support/scratch_folder.h"

namespace {

using ovtest::call;
using ovtest::message_of;
using ovtest::with_failing_code;

constexpr std::size_t slice = 262144;

std::span<const std::byte> bytes_of(std::string_view text) {
  return std::as_bytes(std::span(text.data(), text.size()));
}

class SegmentFile : public ::testing::Test {
 protected:
  SegmentFile() : path_(folder_ / "source") {}

  ovf::source_file source(std::size_t length, unsigned char fill = 'x') {
    ovtest::write_bytes(path_, ovtest::bytes(length, fill));
    return ovf::source_file(ovf::files().open(ovtest::wide_path(path_), ovf::open_mode::edit));
  }
  ovtest::bytes content() const { return ovtest::read_bytes(path_); }
  static bool exists(const ovf::wide& name) {
    return ovf::system_files().kind(name) != ovf::file_kind::missing;
  }

  ovtest::scratch_folder folder_;
  std::filesystem::path path_;
  ovtest::failing_files files_;
};

TEST_F(SegmentFile, MirrorsTheSourceInATemporaryFileThatGoesWithTheLastCopy) {
  ovf::source_file from = source(1000);
  ovf::wide name;
  {
    ovf::_segmentFile first(from, 0);
    name = first.temporary_name();
    EXPECT_EQ(first.size(), 1000);
    EXPECT_FALSE(first.dirty());
    EXPECT_NE(name.find(OLESTR("RAF")), ovf::wide::npos);
    EXPECT_EQ(first.references(), 1U);
    {
      const ovf::_segmentFile second = first;
      EXPECT_EQ(first.references(), 2U);
    }
    EXPECT_TRUE(exists(name));
  }
  EXPECT_FALSE(exists(name));
}

TEST_F(SegmentFile, ReadsAndWritesAtAbsolutePositions) {
  ovf::source_file from = source(slice + 500);
  ovf::_segmentFile part(from, slice);
  EXPECT_EQ(part.size(), 500);
  EXPECT_EQ(part.writeData(slice + 10, bytes_of("gold")), 4U);
  EXPECT_TRUE(part.dirty());
  EXPECT_EQ(part.size(), 500);
  std::byte back[6];
  EXPECT_EQ(part.readData(slice + 9, back), 6U);
  EXPECT_EQ(std::memcmp(back, "xgoldx", 6), 0);
}

TEST_F(SegmentFile, APositionAtTheEndOfTheSliceIsOutside) {
  ovf::source_file from = source(0);
  ovf::_segmentFile part(from, 0);
  std::byte back[1];
  EXPECT_EQ(part.writeData(slice, bytes_of("a")), 0U);
  EXPECT_EQ(part.readData(slice, back), 0U);
  EXPECT_FALSE(part.dirty());
}

TEST_F(SegmentFile, AWriteIsCutAtTheEndOfTheSlice) {
  ovf::source_file from = source(0);
  ovf::_segmentFile part(from, 0);
  EXPECT_EQ(part.writeData(slice - 3, bytes_of("copper")), 3U);
  EXPECT_EQ(part.size(), static_cast<std::int64_t>(slice));
}

TEST_F(SegmentFile, SyncCopiesBackAndClearsTheMark) {
  ovf::source_file from = source(100);
  ovf::_segmentFile part(from, 0);
  part.writeData(50, bytes_of("nickel"));
  EXPECT_TRUE(part.sync());
  EXPECT_FALSE(part.dirty());
  ovtest::bytes expected(100, 'x');
  std::copy_n("nickel", 6, expected.begin() + 50);
  EXPECT_EQ(content(), expected);
}

TEST_F(SegmentFile, TheLastReleaseCopiesBack) {
  ovf::source_file from = source(10);
  {
    ovf::_segmentFile part(from, 0);
    ovf::_segmentFile other = part;
    other.writeData(8, bytes_of("zinc"));
  }
  EXPECT_EQ(content(), (ovtest::bytes{'x', 'x', 'x', 'x', 'x', 'x', 'x', 'x', 'z', 'i', 'n', 'c'}));
}

TEST_F(SegmentFile, ATemporaryFileThatCannotBeMadeIsThrown) {
  ovf::source_file from = source(10);
  const ovtest::debug_listener debug;
  files_.fail_all(call::open);
  EXPECT_EQ(message_of([&] { ovf::_segmentFile(from, 0); }), "cannot create temp file for segment");
  EXPECT_TRUE(debug.heard("cannot create temp file for segment"));
}

TEST_F(SegmentFile, AFailedCopyInGoesToTheDebugChannelAlone) {
  ovf::source_file from = source(10);
  const ovtest::debug_listener debug;
  files_.fail_nth(call::write, 1);
  const ovf::_segmentFile part(from, 0);
  EXPECT_EQ(debug.lines(), std::vector<std::string>{with_failing_code(
                               "OvFile Error: _segmentFile failed to write an entire page.")});
}

TEST_F(SegmentFile, FailedReadsAndWritesGoToTheDebugChannelAlone) {
  ovf::source_file from = source(10);
  ovf::_segmentFile part(from, 0);
  const ovtest::debug_listener debug;
  std::byte back[4];
  files_.fail_nth(call::read, 1);
  EXPECT_EQ(part.readData(0, back), 0U);
  EXPECT_TRUE(debug.heard(with_failing_code("OvFile Error: _segmentFile::readData read.")));
  files_.fail_nth(call::write, 1);
  EXPECT_EQ(part.writeData(0, bytes_of("lead")), 0U);
  EXPECT_TRUE(debug.heard(
      with_failing_code("OvFile Error: _segmentFile::writeData failed to write an entire page.")));
}

TEST_F(SegmentFile, AFailedPureReadIsNotedWithItsTwoBlanks) {
  ovf::source_file from = source(10);
  const ovtest::debug_listener debug;
  std::byte back[4];
  files_.fail_nth(call::read, 1);
  EXPECT_EQ(from.read_pure(0, back), 0U);
  EXPECT_EQ(debug.lines(), std::vector<std::string>{with_failing_code("OvFile Error: readPure failed ")});
}

TEST_F(SegmentFile, AFailedSyncKeepsTheChange) {
  ovf::source_file from = source(10);
  ovf::_segmentFile part(from, 0);
  part.writeData(0, bytes_of("iron"));
  const ovtest::debug_listener debug;
  files_.fail_nth(call::read, 1);
  EXPECT_FALSE(part.sync());
  EXPECT_TRUE(part.dirty());
  EXPECT_TRUE(debug.heard(with_failing_code("OvFile Error: segmentFile::sync failed read.")));
  EXPECT_TRUE(part.sync());
  EXPECT_EQ(content()[3], 'n');
}

TEST_F(SegmentFile, AFailedCopyBackAtTheEndIsNoted) {
  ovf::source_file from = source(10);
  const ovtest::debug_listener debug;
  {
    ovf::_segmentFile part(from, 0);
    part.writeData(0, bytes_of("iron"));
    files_.fail_nth(call::read, 1);
  }
  EXPECT_TRUE(debug.heard(with_failing_code("OvFile Error: ~segmentfile failed read.")));
}

class RandomAccessFile : public SegmentFile {};

TEST_F(RandomAccessFile, AnEmptyFileHasNoSlicesAndGrowsWithWrites) {
  {
    ovf::random_access_file file(ovtest::wide_path(path_), ovf::random_access::create);
    EXPECT_EQ(file.length(), 0U);
    EXPECT_EQ(file.write(0, bytes_of("header")), 6U);
    EXPECT_EQ(file.length(), 6U);
    EXPECT_TRUE(file.sync());
  }
  EXPECT_EQ(content(), (ovtest::bytes{'h', 'e', 'a', 'd', 'e', 'r'}));
}

TEST_F(RandomAccessFile, AWriteThatStoresNothingMakesNothingLonger) {
  ovf::random_access_file file(ovtest::wide_path(path_), ovf::random_access::create);
  EXPECT_EQ(file.write(0, bytes_of("zinc")), 4U);
  files_.fail_all(call::write);
  EXPECT_EQ(file.write(100, bytes_of("lead")), 0U);
  EXPECT_EQ(file.length(), 4U);
  files_.fail_nothing();
  EXPECT_TRUE(file.sync());
  EXPECT_EQ(content().size(), 4U);
}

TEST_F(RandomAccessFile, AWriteGoesOnInTheFollowingSlices) {
  const std::string long_text(slice + 20, 'w');
  {
    ovf::random_access_file file(ovtest::wide_path(path_), ovf::random_access::create);
    ASSERT_EQ(file.write(0, bytes_of(std::string(slice, 'v'))), slice);
    EXPECT_EQ(file.write(slice - 10, bytes_of(long_text)), long_text.size());
    EXPECT_EQ(file.length(), 2 * slice + 10);
    std::byte back[4];
    EXPECT_EQ(file.read(slice - 11, back), 4U);
    EXPECT_EQ(std::memcmp(back, "vwww", 4), 0);
  }
  const ovtest::bytes whole = content();
  ASSERT_EQ(whole.size(), 2 * slice + 10);
  EXPECT_EQ(whole[slice - 11], 'v');
  EXPECT_EQ(whole[slice - 10], 'w');
  EXPECT_EQ(whole.back(), 'w');
}

TEST_F(RandomAccessFile, AWriteExactlyAtTheEndOfTheLastSliceMakesTheNext) {
  ovf::random_access_file file(ovtest::wide_path(path_), ovf::random_access::create);
  ASSERT_EQ(file.write(0, bytes_of(std::string(slice, 'v'))), slice);
  EXPECT_EQ(file.write(slice, bytes_of("next")), 4U);
  EXPECT_EQ(file.length(), slice + 4);
}

TEST_F(RandomAccessFile, CreatingOverAnExistingFileEmptiesIt) {
  ovtest::write_bytes(path_, ovtest::bytes(5000, 'o'));
  {
    ovf::random_access_file file(ovtest::wide_path(path_), ovf::random_access::create);
    file.write(0, bytes_of("new"));
  }
  EXPECT_EQ(content(), (ovtest::bytes{'n', 'e', 'w'}));
}

TEST_F(RandomAccessFile, OpeningMirrorsWhatIsThereOrMakesTheFile) {
  {
    ovf::random_access_file file(ovtest::wide_path(path_), ovf::random_access::open);
    EXPECT_EQ(file.length(), 0U);
  }
  ovtest::write_bytes(path_, ovtest::bytes(slice + 1, 'o'));
  {
    ovf::random_access_file file(ovtest::wide_path(path_), ovf::random_access::open);
    EXPECT_EQ(file.length(), slice + 1);
    file.write(slice, bytes_of("!"));
  }
  EXPECT_EQ(content()[slice - 1], 'o');
  EXPECT_EQ(content()[slice], '!');
}

TEST_F(RandomAccessFile, ATargetThatCannotBeMadeIsThrown) {
  EXPECT_EQ(message_of([&] {
              ovf::random_access_file(ovtest::wide_path(folder_ / "missing" / "table"),
                                      ovf::random_access::create);
            }),
            "cannot create file");
}

}  // namespace
