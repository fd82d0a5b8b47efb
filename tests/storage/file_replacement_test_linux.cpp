#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "storage/file_copy.h"
#include "storage/file_replacement.h"
#include "support/failing_files.h"
#include "support/file_bytes.h"
#include "support/scratch_folder.h"

namespace {

class LinuxReplacement : public ::testing::Test {
 protected:
  LinuxReplacement() { ovtest::write_bytes(path_, {'o', 'l', 'd'}); }

  static bool replaced(const std::filesystem::path& path) {
    ovf::file_replacement made(ovtest::wide_path(path));
    const std::byte text[] = {std::byte{'n'}};
    return made.begin() && ovf::write_whole(made.copy(), text) && made.commit();
  }
  static mode_t permissions(const std::filesystem::path& path) {
    struct stat facts {};
    EXPECT_EQ(::stat(path.c_str(), &facts), 0);
    return facts.st_mode & 07777;
  }

  ovtest::scratch_folder folder_;
  std::filesystem::path path_ = folder_ / "table.ovt";
};

TEST_F(LinuxReplacement, ALinkStaysAndTheFileBehindItIsReplaced) {
  std::filesystem::create_directory(folder_ / "data");
  const auto behind = folder_ / "data" / "real.ovt";
  std::filesystem::rename(path_, behind);
  std::filesystem::create_symlink("data/real.ovt", folder_ / "middle.ovt");
  std::filesystem::create_symlink("middle.ovt", path_);
  EXPECT_TRUE(replaced(path_));
  EXPECT_TRUE(std::filesystem::is_symlink(path_));
  EXPECT_TRUE(std::filesystem::is_symlink(folder_ / "middle.ovt"));
  EXPECT_FALSE(std::filesystem::is_symlink(behind));
  EXPECT_EQ(ovtest::read_bytes(behind), (ovtest::bytes{'n'}));
}

TEST_F(LinuxReplacement, PermissionsCarryOver) {
  for (const mode_t mode : {0600U, 0640U, 0664U, 0777U}) {
    ASSERT_EQ(::chmod(path_.c_str(), mode), 0);
    EXPECT_TRUE(replaced(path_));
    EXPECT_EQ(permissions(path_), mode);
  }
}

constexpr const char* access_list = "system.posix_acl_access";
constexpr const char* default_list = "system.posix_acl_default";

/// An access list as the system keeps it: its version and then tag, rights and whom they are for, each 255
/// for nobody in particular. User 1001 may read, the group may not.
const std::string list_of_a_reader(
    "\2\0\0\0"
    "\x01\0\6\0\xFF\xFF\xFF\xFF"
    "\x02\0\4\0\xE9\x03\0\0"
    "\x04\0\0\0\xFF\xFF\xFF\xFF"
    "\x10\0\4\0\xFF\xFF\xFF\xFF"
    "\x20\0\0\0\xFF\xFF\xFF\xFF",
    4 + 5 * 8);

bool set_list(const std::filesystem::path& path, const char* kind) {
  return ::setxattr(path.c_str(), kind, list_of_a_reader.data(), list_of_a_reader.size(), 0) == 0;
}

std::string list_at(const std::filesystem::path& path) {
  char list[256];
  const ssize_t size = ::getxattr(path.c_str(), access_list, list, sizeof list);
  return size < 0 ? "" : std::string(list, static_cast<std::size_t>(size));
}

TEST_F(LinuxReplacement, TheAccessListCarriesOver) {
  if (!set_list(path_, access_list)) GTEST_SKIP() << "no access lists in " << folder_.path();
  ASSERT_EQ(permissions(path_), 0640U);
  EXPECT_TRUE(replaced(path_));
  EXPECT_EQ(list_at(path_), list_of_a_reader);
  EXPECT_EQ(permissions(path_), 0640U);
}

TEST_F(LinuxReplacement, WithoutAnAccessListTheNewFileGetsNoneFromItsFolder) {
  if (!set_list(folder_.path(), default_list)) GTEST_SKIP() << "no access lists in " << folder_.path();
  ASSERT_EQ(::chmod(path_.c_str(), 0640), 0);
  ASSERT_EQ(list_at(path_), "");
  EXPECT_TRUE(replaced(path_));
  EXPECT_EQ(list_at(path_), "");
  EXPECT_EQ(permissions(path_), 0640U);
}

TEST_F(LinuxReplacement, UntilThenTheCopyIsItsOwnersAlone) {
  ASSERT_EQ(::chmod(path_.c_str(), 0666), 0);
  ovf::file_replacement made(ovtest::wide_path(path_));
  ASSERT_TRUE(made.begin());
  EXPECT_EQ(permissions(ovf::utf8_from_wide(made.copy_name())), 0600U);
}

TEST_F(LinuxReplacement, TheCopyIsHidden) {
  ovf::file_replacement made(ovtest::wide_path(path_));
  ASSERT_TRUE(made.begin());
  const std::filesystem::path name(ovf::utf8_from_wide(made.copy_name()));
  EXPECT_TRUE(name.filename().string().starts_with(".NEW")) << name;
}

TEST_F(LinuxReplacement, AnotherProcessThatHasTheFileOpenRefusesIt) {
  int ready[2];
  int done[2];
  ASSERT_EQ(::pipe(ready), 0);
  ASSERT_EQ(::pipe(done), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    const auto held = ovf::files().open(ovtest::wide_path(path_), ovf::open_mode::edit);
    char signal = held != nullptr ? 'y' : 'n';
    if (::write(ready[1], &signal, 1) != 1) ::_exit(1);
    ::_exit(::read(done[0], &signal, 1) == 1 ? 0 : 1);
  }
  char signal = 0;
  ASSERT_EQ(::read(ready[0], &signal, 1), 1);
  ASSERT_EQ(signal, 'y');
  EXPECT_FALSE(replaced(path_));
  EXPECT_EQ(ovtest::read_bytes(path_).size(), 3U);
  ASSERT_EQ(::write(done[1], &signal, 1), 1);
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  for (const int end : {ready[0], ready[1], done[0], done[1]}) ::close(end);
  EXPECT_TRUE(replaced(path_));
}

TEST_F(LinuxReplacement, ARefusedFileStaysLockedAsInUse) {
  auto own = ovf::files().open(ovtest::wide_path(path_), ovf::open_mode::edit);
  auto other = ovf::files().open(ovtest::wide_path(path_), ovf::open_mode::read);
  ovf::file_replacement made(ovtest::wide_path(path_));
  ASSERT_TRUE(made.begin());
  EXPECT_FALSE(made.commit(own));
  other.reset();
  EXPECT_EQ(ovf::files().open(ovtest::wide_path(path_), ovf::open_mode::truncate), nullptr);
}

TEST_F(LinuxReplacement, TheNewFileIsLockedAsInUse) {
  auto own = ovf::files().open(ovtest::wide_path(path_), ovf::open_mode::edit);
  ovf::file_replacement made(ovtest::wide_path(path_));
  ASSERT_TRUE(made.begin());
  ASSERT_TRUE(made.commit(own));
  EXPECT_EQ(ovf::files().open(ovtest::wide_path(path_), ovf::open_mode::truncate), nullptr);
  EXPECT_NE(ovf::files().open(ovtest::wide_path(path_), ovf::open_mode::read), nullptr);
}

TEST_F(LinuxReplacement, AFileThatSomebodyPutInItsPlaceIsNotOverwritten) {
  auto own = ovf::files().open(ovtest::wide_path(path_), ovf::open_mode::edit);
  ovtest::write_bytes(folder_ / "other", {'x'});
  std::filesystem::rename(folder_ / "other", path_);
  ovf::file_replacement made(ovtest::wide_path(path_));
  ASSERT_TRUE(made.begin());
  EXPECT_FALSE(made.commit(own));
  EXPECT_EQ(ovtest::read_bytes(path_), (ovtest::bytes{'x'}));
}

}  // namespace
