#include "base/file.h"

#include <gtest/gtest.h>

#include <limits>

#include "base/system_error.h"
#include "support/denied_memory.h"
#include "support/file_bytes.h"
#include "support/scratch_folder.h"

namespace {

using ovf::file_kind;
using ovf::open_mode;

class Files : public ::testing::Test {
 protected:
  ovf::wide name(const char* leaf) const {
    const auto text = (folder_ / leaf).u16string();
    return ovf::wide(text.begin(), text.end());
  }
  static std::span<const std::byte> bytes_of(std::string_view text) {
    return std::as_bytes(std::span(text.data(), text.size()));
  }
  void make(const char* leaf, std::string_view text) {
    ovtest::write_bytes(folder_ / leaf, ovtest::bytes(text.begin(), text.end()));
  }
  std::string content(const char* leaf) const {
    const ovtest::bytes all = ovtest::read_bytes(folder_ / leaf);
    return {all.begin(), all.end()};
  }

  ovtest::scratch_folder folder_;
  ovf::file_system& files_ = ovf::system_files();
};

TEST_F(Files, KindsOfNames) {
  make("table", "x");
  EXPECT_EQ(files_.kind(name("table")), file_kind::regular);
  EXPECT_EQ(files_.kind(name("missing")), file_kind::missing);
  EXPECT_EQ(files_.kind(name(".")), file_kind::other);
  EXPECT_EQ(files_.kind({}), file_kind::missing);
  EXPECT_EQ(files_.kind(ovf::wide(1, OLESTR('\0'))), file_kind::missing);
}

TEST_F(Files, AFolderIsNoFile) {
  EXPECT_EQ(files_.open(name("."), open_mode::read), nullptr);
  EXPECT_EQ(files_.open(name("."), open_mode::edit), nullptr);
}

TEST_F(Files, OpeningNeverMakesAFileUnlessToldTo) {
  EXPECT_EQ(files_.open(name("new"), open_mode::read), nullptr);
  EXPECT_EQ(files_.open(name("new"), open_mode::edit), nullptr);
  EXPECT_EQ(files_.open(name("new"), open_mode::truncate), nullptr);
  EXPECT_EQ(files_.kind(name("new")), file_kind::missing);
  EXPECT_NE(files_.open(name("new"), open_mode::edit_or_make), nullptr);
  EXPECT_EQ(files_.kind(name("new")), file_kind::regular);
}

TEST_F(Files, ANewFileMustNotBeThere) {
  EXPECT_NE(files_.open(name("new"), open_mode::make_new), nullptr);
  EXPECT_EQ(files_.open(name("new"), open_mode::make_new), nullptr);
  EXPECT_TRUE(ovf::already_exists(ovf::last_system_error()));
  EXPECT_EQ(files_.open(name("new"), open_mode::scratch), nullptr);
  EXPECT_FALSE(ovf::already_exists(0));
}

TEST_F(Files, ReadsAndWritesAtItsPosition) {
  make("table", "0123456789");
  const auto file = files_.open(name("table"), open_mode::edit);
  ASSERT_NE(file, nullptr);
  std::uint64_t size = 0;
  EXPECT_TRUE(file->size(size));
  EXPECT_EQ(size, 10U);
  std::byte back[20];
  std::size_t done = 0;
  EXPECT_TRUE(file->seek(-3, ovf::seek_origin::end));
  EXPECT_TRUE(file->read(back, done));
  EXPECT_EQ(done, 3U);
  EXPECT_TRUE(file->seek(2, ovf::seek_origin::begin));
  EXPECT_TRUE(file->seek(2, ovf::seek_origin::current));
  EXPECT_TRUE(file->write(bytes_of("ab"), done));
  EXPECT_EQ(done, 2U);
  EXPECT_TRUE(file->set_end());
  EXPECT_TRUE(file->sync());
  EXPECT_EQ(content("table"), "0123ab");
  EXPECT_FALSE(file->seek(-1, ovf::seek_origin::begin));
}

TEST_F(Files, AFileForReadingTakesNothing) {
  make("table", "rows");
  const auto file = files_.open(name("table"), open_mode::read);
  std::size_t done = 0;
  EXPECT_FALSE(file->write(bytes_of("x"), done));
  EXPECT_NE(ovf::last_system_error(), 0U);
}

TEST_F(Files, ATableInUseIsNotEmptied) {
  make("table", "rows");
  const auto user = files_.open(name("table"), open_mode::edit);
  EXPECT_EQ(files_.open(name("table"), open_mode::truncate), nullptr);
  EXPECT_EQ(content("table"), "rows");
}

TEST_F(Files, ManyMayReadAndEditAtOnceAndAFreeFileIsEmptied) {
  make("table", "rows");
  {
    const auto first = files_.open(name("table"), open_mode::edit);
    EXPECT_NE(files_.open(name("table"), open_mode::edit), nullptr);
    EXPECT_NE(files_.open(name("table"), open_mode::read), nullptr);
  }
  EXPECT_NE(files_.open(name("table"), open_mode::truncate), nullptr);
  EXPECT_EQ(content("table"), "");
}

TEST_F(Files, ReplacesAndRemoves) {
  make("old", "old");
  make("new", "new");
  EXPECT_TRUE(files_.replace(name("new"), name("old")));
  EXPECT_EQ(content("old"), "new");
  EXPECT_EQ(files_.kind(name("new")), file_kind::missing);
  EXPECT_FALSE(files_.replace(name("missing"), name("old")));
  EXPECT_TRUE(files_.remove(name("old")));
  EXPECT_FALSE(files_.remove(name("old")));
  EXPECT_TRUE(files_.sync_folder(name(".")));
}

TEST_F(Files, NamesBeyondAsciiWork) {
  const ovf::wide odd = name("") + ovf::wide({OLESTR('t'), OLECHAR{0x00E9}, OLECHAR{0x4E2D}, OLESTR('x')});
  EXPECT_NE(files_.open(odd, open_mode::make_new), nullptr);
  EXPECT_EQ(files_.kind(odd), file_kind::regular);
  EXPECT_TRUE(files_.remove(odd));
}

/// What is left to do when memory has run out. A block of each size in turn cannot be had.
TEST_F(Files, RemovingNeedsNoMemory) {
  const ovf::wide odd = name("") + ovf::wide({OLESTR('t'), OLECHAR{0x00E9}, OLECHAR{0x4E2D}, OLECHAR{0xD83E},
                                              OLECHAR{0xDDF1}, OLESTR('x')});
  for (std::size_t bytes = 1; bytes < 300; ++bytes) {
    ASSERT_NE(files_.open(odd, open_mode::make_new), nullptr);
    ovtest::deny_allocations_of(bytes);
    const bool removed = files_.remove(odd);
    ovtest::deny_allocations_of(0);
    ASSERT_TRUE(removed) << bytes;
  }
  EXPECT_FALSE(files_.remove(odd + ovf::wide(40'000, OLESTR('x'))));
  EXPECT_FALSE(files_.remove({}));
}

TEST_F(Files, TemporaryNamesAreFreeAndDiffer) {
  const ovf::wide first = ovf::temporary_name(name(""), OLESTR("RAF"));
  const ovf::wide second = ovf::temporary_name(name(""), OLESTR("RAF"));
  EXPECT_NE(first, second);
  EXPECT_EQ(files_.kind(first), file_kind::missing);
  EXPECT_TRUE(ovf::wide_view(first).starts_with(name("") + OLESTR("RAF")));
  EXPECT_EQ(files_.kind(files_.temporary_folder()), file_kind::other);
}

TEST(Paths, FoldersEndWithTheirSeparator) {
  EXPECT_EQ(ovf::folder_of(OLESTR("C:\\mine\\a.ovt")), ovf::wide_view(OLESTR("C:\\mine\\")));
  EXPECT_EQ(ovf::folder_of(OLESTR("/mine/a.ovt")), ovf::wide_view(OLESTR("/mine/")));
  EXPECT_EQ(ovf::folder_of(OLESTR("a.ovt")), ovf::wide_view());
}

TEST(Paths, ADriveMakesAPathAbsolute) {
  EXPECT_TRUE(ovf::is_absolute(OLESTR("C:\\a.ovt")));
  EXPECT_FALSE(ovf::is_absolute(OLESTR("a.ovt")));
  EXPECT_FALSE(ovf::is_absolute({}));
  EXPECT_TRUE(ovf::is_absolute(ovf::absolute_path(OLESTR("a.ovt"))) ||
              ovf::absolute_path(OLESTR("a.ovt")).front() == OLESTR('/'));
}

TEST_F(Files, AWriteBehindTheWaitBearsAnotherTime) {
  for (int i = 0; i < 20; ++i) {
    make("table", "x");
    ovf::file_stamp before;
    ovf::file_stamp after;
    ASSERT_TRUE(files_.stamp(name("table"), before));
    files_.wait_past(before);
    make("table", "y");
    ASSERT_TRUE(files_.stamp(name("table"), after));
    EXPECT_GT(after.written, before.written);
  }
}

TEST_F(Files, ATimeToComeIsNotWaitedFor) {
  ovf::file_stamp stamp;
  stamp.written = std::numeric_limits<std::int64_t>::max() / 2;
  files_.wait_past(stamp);
}

}  // namespace
