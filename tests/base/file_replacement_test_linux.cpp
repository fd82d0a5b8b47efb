#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <utility>

#include "base/file_copy.h"
#include "base/file_replacement.h"
#include "support/failing_files.h"
#include "support/file_bytes.h"
#include "support/forgetful_files.h"
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

/// The moment between the look whether somebody has the file open and the step itself.
TEST_F(LinuxReplacement, WhoOpensTheFileInTheLastMomentKeepsIt) {
  for (const bool may_be_new : {false, true}) {
    std::unique_ptr<ovf::file> held;
    ovtest::failing_files watched;
    watched.decide = [&](ovtest::call kind, const ovf::wide&) {
      if (kind == ovtest::call::replace) {
        held = ovf::system_files().open(ovtest::wide_path(path_), ovf::open_mode::edit);
      }
      return ovtest::fate::works;
    };
    ovf::file_replacement made(ovtest::wide_path(path_));
    ASSERT_TRUE(may_be_new ? made.begin_beside() : made.begin());
    EXPECT_FALSE(made.commit());
    EXPECT_TRUE(ovf::is_in_use(ovf::last_system_error()));
    EXPECT_NE(held, nullptr);
    EXPECT_EQ(ovtest::read_bytes(path_).size(), 3U);
  }
}

/// Somebody who opens, changes and closes it in that moment: what he was told is in the file has to stay
/// there.
TEST_F(LinuxReplacement, WhatIsChangedInTheLastMomentStays) {
  for (const bool is_open : {false, true}) {
    ovtest::write_bytes(path_, {'o', 'l', 'd'});
    auto own = is_open ? ovf::files().open(ovtest::wide_path(path_), ovf::open_mode::edit) : nullptr;
    ovtest::failing_files watched;
    watched.decide = [&](ovtest::call kind, const ovf::wide&) {
      if (kind == ovtest::call::replace) ovtest::write_bytes(path_, {'n', 'e', 'w', '!'});
      return ovtest::fate::works;
    };
    ovf::file_replacement made(ovtest::wide_path(path_));
    ASSERT_TRUE(made.begin());
    EXPECT_FALSE(is_open ? made.commit(own) : made.commit());
    EXPECT_TRUE(made.was_changed());
    EXPECT_EQ(ovtest::read_bytes(path_), (ovtest::bytes{'n', 'e', 'w', '!'}));
  }
}

/// Its rights would let him read what the copy holds.
TEST_F(LinuxReplacement, NoRightsAreTakenOfAFileThatSomebodyPutsInTheTargetsPlace) {
  ASSERT_EQ(::chmod(path_.c_str(), 0600), 0);
  ovtest::failing_files watched;
  watched.decide = [&](ovtest::call kind, const ovf::wide& name) {
    if (kind == ovtest::call::open && name == ovtest::wide_path(path_)) {
      std::filesystem::rename(path_, path_.string() + ".away");
      ovtest::write_bytes(path_, {'o', 'l', 'd'});
      ::chmod(path_.c_str(), 0666);
    }
    return ovtest::fate::works;
  };
  ovf::file_replacement made(ovtest::wide_path(path_));
  ASSERT_TRUE(made.begin());
  EXPECT_FALSE(made.settle());
  EXPECT_TRUE(made.was_changed());
  EXPECT_EQ(watched.count(ovtest::call::rights), 0);
}

/// Where the system has no second name for an open file, it is opened again by its own.
TEST_F(LinuxReplacement, ALinkInTheCopysPlaceIsNotTakenForIt) {
  const auto secret = path_.string() + ".secret";
  ovtest::write_bytes(secret, {'s'});
  ASSERT_EQ(::chmod(secret.c_str(), 0600), 0);
  ovtest::forgetful_files disk({ovtest::wide_path(path_)});
  ovf::file_replacement made(ovtest::wide_path(path_));
  ASSERT_TRUE(made.begin());
  const std::string copy = ovf::utf8_from_wide(made.writer_name());
  std::filesystem::remove(copy);
  std::filesystem::create_symlink(secret, copy);
  EXPECT_FALSE(made.commit());
  struct stat facts {};
  ASSERT_EQ(::stat(secret.c_str(), &facts), 0);
  EXPECT_EQ(facts.st_mode & 07777, 0600U);
  EXPECT_EQ(ovtest::read_bytes(path_).size(), 3U);
}

TEST_F(LinuxReplacement, AFileThatMayNotBeReadIsReplaced) {
  ASSERT_EQ(::chmod(path_.c_str(), 0200), 0);
  EXPECT_TRUE(replaced(path_));
}

TEST_F(LinuxReplacement, WhatUsersNotedCarriesOver) {
  if (::setxattr(path_.c_str(), "user.note", "seen", 4, 0) != 0) GTEST_SKIP() << "no users' attributes here";
  EXPECT_TRUE(replaced(path_));
  char note[8];
  ASSERT_EQ(::getxattr(path_.c_str(), "user.note", note, sizeof note), 4);
  EXPECT_EQ(std::string(note, 4), "seen");
}

TEST_F(LinuxReplacement, NobodyRunsItWithItsOwnersRights) {
  ASSERT_EQ(::chmod(path_.c_str(), 06755), 0);
  EXPECT_TRUE(replaced(path_));
  EXPECT_EQ(permissions(path_), 0755U);
}

/// Who may change the folder puts a link under the copy's name, before it is written and before it gets the
/// old file's owner and rights.
TEST_F(LinuxReplacement, ALinkUnderTheCopysNameLeadsNowhere) {
  const auto victim = folder_ / "victim";
  ASSERT_EQ(::chmod(path_.c_str(), 0666), 0);
  for (const bool may_be_new : {false, true}) {
    ovtest::write_bytes(victim, {'v'});
    ASSERT_EQ(::chmod(victim.c_str(), 0600), 0);
    {
      ovf::file_replacement made(ovtest::wide_path(path_));
      ASSERT_TRUE(may_be_new ? made.begin_beside() : made.begin());
      const std::filesystem::path copy(ovf::utf8_from_wide(made.copy_name()));
      std::filesystem::rename(copy, folder_ / "taken");
      std::filesystem::create_symlink(victim, copy);
      const auto writer = ovf::files().open(made.writer_name(), ovf::open_mode::truncate);
      ASSERT_NE(writer, nullptr);
      const std::byte text[] = {std::byte{'n'}};
      EXPECT_TRUE(ovf::write_whole(*writer, text));
      EXPECT_FALSE(made.commit());
    }
    EXPECT_EQ(ovtest::read_bytes(victim), (ovtest::bytes{'v'}));
    EXPECT_EQ(permissions(victim), 0600U);
    EXPECT_EQ(ovtest::read_bytes(path_).size(), 3U);
    EXPECT_EQ(ovtest::read_bytes(folder_ / "taken"), (ovtest::bytes{'n'}));
    std::filesystem::remove(folder_ / "taken");
  }
}

/// What stands under the new name is what was written, and not what somebody puts under the copy's.
TEST_F(LinuxReplacement, AFirstFileIsTheOneThatWasWritten) {
  const auto victim = folder_ / "victim";
  const auto fresh = folder_ / "fresh.ovt";
  ovtest::write_bytes(victim, {'v'});
  ovf::file_replacement made(ovtest::wide_path(fresh));
  ASSERT_TRUE(made.begin_beside());
  const std::byte text[] = {std::byte{'n'}};
  ASSERT_TRUE(ovf::write_whole(made.copy(), text));
  ASSERT_TRUE(made.settle());
  const std::filesystem::path copy(ovf::utf8_from_wide(made.copy_name()));
  std::filesystem::rename(copy, folder_ / "taken");
  std::filesystem::create_symlink(victim, copy);
  EXPECT_TRUE(made.commit());
  EXPECT_FALSE(std::filesystem::is_symlink(fresh));
  EXPECT_EQ(ovtest::read_bytes(fresh), (ovtest::bytes{'n'}));
  EXPECT_TRUE(std::filesystem::is_symlink(copy));
  EXPECT_EQ(ovtest::read_bytes(victim), (ovtest::bytes{'v'}));
}

TEST_F(LinuxReplacement, ACopyThatIsGoneIsNotSaidToStandUnderTheNewName) {
  const auto fresh = folder_ / "fresh.ovt";
  ovf::file_replacement made(ovtest::wide_path(fresh));
  ASSERT_TRUE(made.begin_beside());
  const std::filesystem::path copy(ovf::utf8_from_wide(made.copy_name()));
  std::filesystem::remove(copy);
  std::filesystem::create_symlink(path_, copy);
  EXPECT_FALSE(made.commit());
  EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(fresh)));
}

TEST_F(LinuxReplacement, ALinkInTheFilesPlaceLendsItsTargetsRightsToNobody) {
  ovf::file_replacement made(ovtest::wide_path(path_));
  ASSERT_TRUE(made.begin_beside());
  std::filesystem::rename(path_, folder_ / "moved");
  std::filesystem::create_symlink("moved", path_);
  EXPECT_FALSE(made.commit());
  EXPECT_TRUE(std::filesystem::is_symlink(path_));
}

TEST_F(LinuxReplacement, ANewFileHasTheRightsOfNewFiles) {
  const auto fresh = folder_ / "fresh.ovt";
  const mode_t before = ::umask(027);
  ovf::file_replacement made(ovtest::wide_path(fresh));
  EXPECT_TRUE(made.begin_beside());
  ::umask(before);
  EXPECT_FALSE(made.replaces());
  EXPECT_TRUE(made.commit());
  EXPECT_EQ(permissions(fresh), 0640U);
}

TEST_F(LinuxReplacement, AFileThatCameMeanwhileIsReplacedUnderItsOwnRights) {
  const auto fresh = folder_ / "fresh.ovt";
  ovf::file_replacement made(ovtest::wide_path(fresh));
  ASSERT_TRUE(made.begin_beside());
  const std::byte text[] = {std::byte{'n'}};
  EXPECT_TRUE(ovf::write_whole(made.copy(), text));
  bool is_there = false;
  ovtest::failing_files watched;
  watched.decide = [&](ovtest::call kind, const ovf::wide&) {
    if (kind == ovtest::call::replace && !std::exchange(is_there, true)) {
      ovtest::write_bytes(fresh, {'o'});
      EXPECT_EQ(::chmod(fresh.c_str(), 0604), 0);
    }
    return ovtest::fate::works;
  };
  EXPECT_TRUE(made.commit());
  EXPECT_EQ(ovtest::read_bytes(fresh), (ovtest::bytes{'n'}));
  EXPECT_EQ(permissions(fresh), 0604U);
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
