#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "base/file.h"
#include "support/scratch_folder.h"

namespace {

bool facts_are_denied = false;

}  // namespace

/// In front of the C library's, for a disk that fails behind an open file.
extern "C" int fstat(int descriptor, struct stat* facts) noexcept {
  if (!facts_are_denied) {
    return static_cast<int>(::syscall(SYS_newfstatat, descriptor, "", facts, AT_EMPTY_PATH));
  }
  errno = EIO;
  return -1;
}

namespace {

ovf::wide wide_of(const std::filesystem::path& path) {
  const auto text = path.u16string();
  return ovf::wide(text.begin(), text.end());
}

TEST(LinuxFiles, APipeIsRefusedWithoutWaiting) {
  const ovtest::scratch_folder folder;
  const auto pipe = folder / "pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(ovf::system_files().open(wide_of(pipe), ovf::open_mode::read), nullptr);
  EXPECT_EQ(ovf::system_files().kind(wide_of(pipe)), ovf::file_kind::other);
  EXPECT_EQ(ovf::system_files().open(OLESTR("/dev/null"), ovf::open_mode::edit), nullptr);
}

TEST(LinuxFiles, ScratchFilesAreTheirOwnersAlone) {
  const ovtest::scratch_folder folder;
  const auto scratch = folder / "scratch";
  ASSERT_NE(ovf::system_files().open(wide_of(scratch), ovf::open_mode::scratch), nullptr);
  struct stat facts;
  ASSERT_EQ(::stat(scratch.c_str(), &facts), 0);
  EXPECT_EQ(facts.st_mode & 0777, 0600U);
}

TEST(LinuxFiles, AFileThatIsMadeAndCannotBeUsedIsGone) {
  const ovtest::scratch_folder folder;
  const auto path = folder / "table.ovt";
  using ovf::open_mode;
  for (const open_mode mode :
       {open_mode::make_new, open_mode::scratch, open_mode::make_copy, open_mode::make_first}) {
    facts_are_denied = true;
    const auto opened = ovf::system_files().open(wide_of(path), mode);
    const int reason = errno;
    facts_are_denied = false;
    EXPECT_EQ(opened, nullptr);
    EXPECT_EQ(reason, EIO);
    EXPECT_FALSE(std::filesystem::exists(path));
  }
}

TEST(LinuxFiles, BrokenUtf16NamesNoFile) {
  const ovtest::scratch_folder folder;
  const ovf::wide lone = wide_of(folder / "") + ovf::wide(1, OLECHAR{0xD800});
  EXPECT_EQ(ovf::system_files().open(lone, ovf::open_mode::make_new), nullptr);
  EXPECT_EQ(ovf::system_files().kind(lone), ovf::file_kind::missing);
  EXPECT_FALSE(ovf::system_files().remove(lone));
}

TEST(LinuxFiles, PathsFromWindowsGetTheirSeparators) {
  EXPECT_EQ(ovf::with_own_separators(u"north\\pit.ovt"), u"north/pit.ovt");
  EXPECT_TRUE(ovf::is_absolute(u"/mine/a.ovt"));
}

}  // namespace
