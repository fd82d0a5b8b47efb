#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
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
