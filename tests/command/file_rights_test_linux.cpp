// Who may do what with a file that a command puts in another's place.
#include <dirent.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>

#include "command/command_test.h"
#include "command/first_bytes_linux.h"

namespace {

using names = std::vector<std::string>;

class file_rights_test : public ovtest::command_test {
 protected:
  file_rights_test() { round_trip("A,B\n1,x\n2,y\n"); }

  static std::string program() {
    const char* const set = std::getenv("OVFILE_COMMAND");
    return set != nullptr ? set : OVFILE_COMMAND_PATH;
  }

  std::string path(const std::string& name) const { return (folder() / name).string(); }

  struct stat facts(const std::string& name) const {
    struct stat facts {};
    EXPECT_EQ(::stat(path(name).c_str(), &facts), 0);
    return facts;
  }
  unsigned mode(const std::string& name) const { return facts(name).st_mode & 07777; }
  void set_mode(const std::string& name, mode_t mode) const {
    ASSERT_EQ(::chmod(path(name).c_str(), mode), 0);
  }

  /// False where the file system has no such attributes.
  bool set_attribute(const std::string& name, const char* attribute, const std::string& value) const {
    const int done = ::setxattr(path(name).c_str(), attribute, value.data(), value.size(), 0);
    EXPECT_TRUE(done == 0 || errno == ENOTSUP);
    return done == 0;
  }
  std::string attribute(const std::string& name, const char* attribute) const {
    char value[256];
    const ssize_t size = ::getxattr(path(name).c_str(), attribute, value, sizeof value);
    return size < 0 ? "none" : std::string(value, static_cast<std::size_t>(size));
  }

  /// The owner reads and writes, user 1234 reads, nobody else does anything.
  static std::string access_list() {
    using namespace std::string_literals;
    return "\x02\0\0\0"
           "\x01\0\x06\0\xFF\xFF\xFF\xFF"
           "\x02\0\x04\0\xD2\x04\0\0"
           "\x04\0\0\0\xFF\xFF\xFF\xFF"
           "\x10\0\x04\0\xFF\xFF\xFF\xFF"
           "\x20\0\0\0\xFF\xFF\xFF\xFF"s;
  }
};

constexpr const char* list_of_file = "system.posix_acl_access";
constexpr const char* list_of_folder = "system.posix_acl_default";

TEST_F(file_rights_test, a_new_file_has_the_rights_of_new_files) {
  const mode_t old = ::umask(027);
  run_quietly({"export", "t.ovt", "out.csv"});
  run_quietly({"import", "in.csv", "u.ovt"});
  ::umask(old);
  EXPECT_EQ(mode("out.csv"), 0640u);
  EXPECT_EQ(mode("u.ovt"), 0640u);
}

TEST_F(file_rights_test, a_replaced_file_keeps_its_permissions) {
  for (const mode_t wanted : {0600U, 0640U, 0666U, 0444U}) {
    write("out.csv", "old");
    set_mode("out.csv", wanted);
    set_mode("t.ovt", wanted);
    run_quietly({"import", "in.csv", "t.ovt"});
    run_quietly({"export", "t.ovt", "out.csv"});
    EXPECT_EQ(mode("out.csv"), wanted);
    EXPECT_EQ(mode("t.ovt"), wanted);
    EXPECT_EQ(read("out.csv"), "A,B\n1,x\n2,y\n");
    set_mode("out.csv", 0600);
  }
}

TEST_F(file_rights_test, nobody_else_reads_what_takes_a_files_place_while_it_is_written) {
  std::string csv = "A,B\n";
  for (int i = 0; i < 100000; ++i) csv += std::to_string(i) + ",secret\n";
  round_trip(csv);
  write("out.csv", "old");
  set_mode("out.csv", 0600);
  ovtest::started_program started({program(), "export", "t.ovt", "out.csv"}, folder().path());
  int looks = 0;
  for (auto kind = ovtest::folder_change::creation; started.goes_on_to(kind, folder().path());
       kind = ovtest::folder_change::writing) {
    EXPECT_EQ(mode(ovtest::unfinished_in(folder().path()).filename()), 0600u);
    ++looks;
  }
  EXPECT_EQ(started.wait().status, 0);
  EXPECT_GT(looks, 2);
}

TEST_F(file_rights_test, owner_and_group_stay) {
  if (::geteuid() != 0) GTEST_SKIP() << "only the superuser gives files away";
  write("out.csv", "old");
  set_mode("out.csv", 0640);
  ASSERT_EQ(::chown(path("out.csv").c_str(), 1234, 2345), 0);
  ASSERT_EQ(::chown(path("t.ovt").c_str(), 1234, 2345), 0);
  run_quietly({"import", "in.csv", "t.ovt"});
  run_quietly({"export", "t.ovt", "out.csv"});
  for (const char* name : {"out.csv", "t.ovt"}) {
    EXPECT_EQ(facts(name).st_uid, 1234u);
    EXPECT_EQ(facts(name).st_gid, 2345u);
  }
  EXPECT_EQ(mode("out.csv"), 0640u);
}

TEST_F(file_rights_test, another_group_gets_no_rights) {
  if (::geteuid() != 0) GTEST_SKIP() << "only the superuser becomes another user";
  const names as_user = {"/usr/bin/setpriv", "--reuid=1234", "--regid=1234", "--clear-groups"};
  const auto run_as_user = [&](const names& arguments) {
    names all = as_user;
    all.insert(all.end(), arguments.begin(), arguments.end());
    return ovtest::run_process(all, folder().path());
  };
  if (run_as_user({"/usr/bin/env", "true"}).status != 0) GTEST_SKIP() << "no other user can be become";
  set_mode(".", 0777);
  write("out.csv", "old");
  ASSERT_EQ(::chown(path("out.csv").c_str(), 0, 2345), 0);
  set_mode("out.csv", 04664);
  const ovtest::process_result result = run_as_user({program(), "export", "t.ovt", "out.csv"});
  EXPECT_EQ(result.error, "");
  EXPECT_EQ(facts("out.csv").st_uid, 1234u);
  EXPECT_EQ(facts("out.csv").st_gid, 1234u);
  EXPECT_EQ(mode("out.csv"), 0600u);
  // Where the group stays, so do the rights; no program runs with another owner's.
  write("out.csv", "old");
  ASSERT_EQ(::chown(path("out.csv").c_str(), 0, 1234), 0);
  set_mode("out.csv", 04664);
  EXPECT_EQ(run_as_user({program(), "export", "t.ovt", "out.csv"}).error, "");
  EXPECT_EQ(facts("out.csv").st_uid, 1234u);
  EXPECT_EQ(mode("out.csv"), 0664u);
}

TEST_F(file_rights_test, what_users_noted_stays) {
  write("out.csv", "old");
  if (!set_attribute("out.csv", "user.note", "checked") || !set_attribute("t.ovt", "user.note", "by hand")) {
    GTEST_SKIP() << "this file system has no users' attributes";
  }
  run_quietly({"export", "t.ovt", "out.csv"});
  run_quietly({"import", "in.csv", "t.ovt"});
  EXPECT_EQ(attribute("out.csv", "user.note"), "checked");
  EXPECT_EQ(attribute("t.ovt", "user.note"), "by hand");
}

TEST_F(file_rights_test, an_access_list_stays) {
  write("out.csv", "old");
  if (!set_attribute("out.csv", list_of_file, access_list())) GTEST_SKIP() << "there are no access lists";
  EXPECT_EQ(mode("out.csv"), 0640u) << "as the list shows";
  run_quietly({"export", "t.ovt", "out.csv"});
  EXPECT_EQ(attribute("out.csv", list_of_file), access_list());
  EXPECT_EQ(mode("out.csv"), 0640u);
}

TEST_F(file_rights_test, a_folders_list_does_not_come_over_a_file_without_one) {
  write("out.csv", "old");
  set_mode("out.csv", 0660);
  if (!set_attribute(".", list_of_folder, access_list())) GTEST_SKIP() << "there are no access lists";
  run_quietly({"export", "t.ovt", "out.csv"});
  EXPECT_EQ(attribute("out.csv", list_of_file), "none");
  EXPECT_EQ(mode("out.csv"), 0660u);
  run_quietly({"export", "t.ovt", "new.csv"});
  EXPECT_NE(attribute("new.csv", list_of_file), "none") << "a new file has what its folder gives";
}

/// Another user, whose the folder is: copies that stand in it are swapped for links to a file as fast as can
/// be.
class link_swapper {
 public:
  link_swapper(const std::string& folder, const std::string& file, uid_t user) : id_(::fork()) {
    if (id_ != 0) return;
    if (::chdir(folder.c_str()) != 0 || ::setgid(user) != 0 || ::setuid(user) != 0) ::_exit(1);
    for (;;) {
      DIR* const found = ::opendir(".");
      while (const dirent* const entry = ::readdir(found)) {
        if (std::string_view(entry->d_name).find("NEW") == std::string_view::npos) continue;
        if (::unlink(entry->d_name) == 0) (void)!::symlink(file.c_str(), entry->d_name);
      }
      ::closedir(found);
    }
  }
  link_swapper(const link_swapper&) = delete;
  link_swapper& operator=(const link_swapper&) = delete;
  ~link_swapper() {
    ::kill(id_, SIGKILL);
    ::waitpid(id_, nullptr, 0);
  }

 private:
  pid_t id_;
};

TEST_F(file_rights_test, who_swaps_a_copy_for_a_link_gets_no_file_of_anothers) {
  if (::geteuid() != 0) GTEST_SKIP() << "only the superuser gives files away";
  constexpr uid_t other = 65534;
  const ovtest::scratch_folder aside;
  const std::string secret = (aside / "secret").string();
  ovtest::write_text(secret, "secret");
  ASSERT_EQ(::chmod(secret.c_str(), 0600), 0);
  const std::string table = read("t.ovt");
  ASSERT_EQ(::chown(path(".").c_str(), other, other), 0);
  const link_swapper swapper(path("."), secret, other);
  const std::vector<names> commands = {{"sort", "t.ovt", "--by", "A", "--descending"},
                                       {"alter", "t.ovt", "--add", "C=1"},
                                       {"delete-rows", "t.ovt", "--rows", "1"},
                                       {"import", "in.csv", "t.ovt"},
                                       {"export", "t.ovt", "in.csv"}};
  for (int tries = 0; tries < 25; ++tries) {
    for (const char* name : {"t.ovt", "in.csv"}) std::filesystem::remove(path(name));
    write("t.ovt", table);
    write("in.csv", "A,B\n1,x\n");
    for (const char* name : {"t.ovt", "in.csv"}) ASSERT_EQ(::chown(path(name).c_str(), other, other), 0);
    run(commands[static_cast<std::size_t>(tries) % commands.size()]);
    struct stat found {};
    ASSERT_EQ(::stat(secret.c_str(), &found), 0);
    EXPECT_EQ(found.st_uid, 0U);
    EXPECT_EQ(found.st_mode & 07777, 0600U);
    EXPECT_EQ(ovtest::read_bytes(secret).size(), std::size_t{6});
  }
}

}  // namespace
