// The registry's text file: what stands in it, who may write it at once, and what a kill leaves.
#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <optional>
#include <thread>
#include <vector>

#include "environment_linux.h"
#include "platform/registry_file_linux.h"

namespace {

using ovf::registry_key;
using ovf::registry_root;

class registry_file : public ovtest::environment_test {
 protected:
  registry_file() : file(folder / "registry.reg") { set("OVFILE_REGISTRY", file.string()); }

  std::filesystem::path file;
  registry_key user{registry_root::current_user, u"Software\\Orvexa\\OvFile"};
  registry_key classes{registry_root::classes, u"OvFile.OvTable"};
};

TEST_F(registry_file, has_the_form_of_exported_registry_text) {
  EXPECT_TRUE(ovf::set_registry_number(user, u"UseLongFieldNamesMaster", 1));
  EXPECT_TRUE(ovf::set_registry_text(classes, {}, u"OvTable Class"));
  EXPECT_TRUE(ovf::set_registry_text(classes, u"a \"b\" \\c", u"d \"e\" \\f \u00E9"));
  EXPECT_TRUE(ovf::make_registry_key({registry_root::classes, u"Empty"}));
  EXPECT_EQ(content_of(file),
            "[HKEY_CURRENT_USER\\Software\\Orvexa\\OvFile]\n"
            "\"UseLongFieldNamesMaster\"=dword:00000001\n"
            "\n"
            "[HKEY_CLASSES_ROOT\\OvFile.OvTable]\n"
            "@=\"OvTable Class\"\n"
            "\"a \\\"b\\\" \\\\c\"=\"d \\\"e\\\" \\\\f \xC3\xA9\"\n"
            "\n"
            "[HKEY_CLASSES_ROOT\\Empty]\n");
}

TEST_F(registry_file, is_read_as_people_write_it) {
  write(file,
        "\xEF\xBB\xBF; settings\r\n"
        "  [hkey_current_user\\SOFTWARE\\orvexa\\ovfile]  \r\n"
        " \"uselongfieldnamesMASTER\" = dword:A \r\n"
        "@=\"x\"\r\n");
  EXPECT_EQ(ovf::registry_number(user, u"UseLongFieldNamesMaster"), 10u);
  EXPECT_EQ(ovf::registry_text(user, {}), u"x");
}

TEST_F(registry_file, a_mark_of_utf8_that_stands_twice_hides_no_section) {
  write(file, "\xEF\xBB\xBF\xEF\xBB\xBF[HKEY_CURRENT_USER\\Software\\Orvexa\\OvFile]\n@=\"x\"\n");
  EXPECT_EQ(ovf::registry_text(user, {}), u"x");
}

TEST_F(registry_file, lines_that_cannot_be_read_stay_and_reading_goes_on) {
  const std::string odd =
      "junk before\n"
      "\"stray\"=dword:00000001\n"
      "[HKEY_CURRENT_USER\\Software\\Orvexa\\OvFile]\n"
      "\"bytes\"=hex:01,02\n"
      "\"long\"=dword:123456789\n"
      "\"none\"=dword:\n"
      "\"open\"=\"abc\n"
      "\"escape\"=\"abc\\\n"
      "\"more\"=\"abc\" def\n"
      "no equals sign\n"
      "[unfinished\n"
      "[]\n"
      "\xFF\xFE not UTF-8\n"
      "\"good\"=dword:00000007\n";
  write(file, odd);
  EXPECT_EQ(ovf::registry_number(user, u"good"), 7u);
  for (const char16_t* name : {u"stray", u"bytes", u"long", u"none"}) {
    EXPECT_FALSE(ovf::registry_number(user, name).has_value());
  }
  for (const char16_t* name : {u"open", u"escape", u"more"})
    EXPECT_FALSE(ovf::registry_text(user, name).has_value());
  EXPECT_TRUE(ovf::set_registry_number(user, u"good", 8));
  EXPECT_EQ(content_of(file), odd.substr(0, odd.size() - 2) + "8\n");
}

TEST_F(registry_file, an_unreadable_line_outlives_its_key) {
  write(file,
        "[HKEY_CLASSES_ROOT\\OvFile.OvTable]\n@=\"x\"\n\"b\"=hex:01\n\n"
        "[HKEY_CLASSES_ROOT\\OvFile.OvTable\\CLSID]\n@=\"y\"\n\n"
        "[HKEY_CLASSES_ROOT\\OvFile.OvTable2]\n@=\"z\"\n");
  EXPECT_TRUE(ovf::delete_registry_tree(classes));
  EXPECT_EQ(content_of(file), "\"b\"=hex:01\n[HKEY_CLASSES_ROOT\\OvFile.OvTable2]\n@=\"z\"\n");
}

TEST_F(registry_file, a_value_goes_to_the_end_of_its_section) {
  write(file,
        "[HKEY_CURRENT_USER\\Software\\Orvexa\\OvFile]\n\"a\"=dword:00000001\n\n[HKEY_CLASSES_ROOT\\x]\n@="
        "\"y\"\n");
  EXPECT_TRUE(ovf::set_registry_number(user, u"b", 2));
  EXPECT_EQ(content_of(file),
            "[HKEY_CURRENT_USER\\Software\\Orvexa\\OvFile]\n\"a\"=dword:00000001\n\"b\"=dword:00000002\n\n"
            "[HKEY_CLASSES_ROOT\\x]\n@=\"y\"\n");
}

TEST_F(registry_file, of_two_lines_for_a_value_the_later_one_holds) {
  write(file,
        "[HKEY_CURRENT_USER\\Software\\Orvexa\\OvFile]\n\"a\"=dword:00000001\n\"A\"=dword:00000002\n"
        "[HKEY_CURRENT_USER\\Software\\Orvexa\\OvFile]\n\"a\"=\"three\"\n");
  EXPECT_EQ(ovf::registry_text(user, u"a"), u"three");
  EXPECT_FALSE(ovf::registry_number(user, u"a").has_value());
  EXPECT_TRUE(ovf::set_registry_number(user, u"a", 4));
  EXPECT_EQ(ovf::registry_number(user, u"a"), 4u);
}

TEST_F(registry_file, what_no_line_can_hold_is_refused) {
  EXPECT_TRUE(ovf::set_registry_number(user, u"a", 1));
  const std::string before = content_of(file);
  EXPECT_FALSE(ovf::set_registry_text(user, u"b", u"two\nlines"));
  EXPECT_FALSE(ovf::set_registry_text(user, u"b\r", u"x"));
  EXPECT_FALSE(ovf::set_registry_text({registry_root::classes, u"a\nb"}, {}, u"x"));
  EXPECT_EQ(content_of(file), before);
}

TEST_F(registry_file, a_file_that_cannot_be_opened_reads_as_empty_and_is_not_written) {
  std::filesystem::create_directory(file);
  EXPECT_FALSE(ovf::registry_number(user, u"a").has_value());
  EXPECT_FALSE(ovf::set_registry_number(user, u"a", 1));
  set("OVFILE_REGISTRY", (folder / "missing" / "registry.reg").string());
  EXPECT_FALSE(ovf::registry_number(user, u"a").has_value());
  EXPECT_FALSE(ovf::set_registry_number(user, u"a", 1));
  EXPECT_FALSE(std::filesystem::exists(folder / "missing"));
}

TEST_F(registry_file, a_pipe_is_no_registry) {
  ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
  EXPECT_FALSE(ovf::registry_number(user, u"a").has_value());
  EXPECT_FALSE(ovf::set_registry_number(user, u"a", 1));
}

TEST_F(registry_file, a_failed_write_leaves_the_old_text) {
  EXPECT_TRUE(ovf::set_registry_number(user, u"a", 1));
  const std::string before = content_of(file);
  std::filesystem::create_directory(file.string() + ".new");
  EXPECT_FALSE(ovf::set_registry_number(user, u"a", 2));
  EXPECT_EQ(content_of(file), before);
}

TEST_F(registry_file, leaves_nothing_but_the_file_and_its_lock) {
  EXPECT_TRUE(ovf::set_registry_number(user, u"a", 1));
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (std::vector<std::string>{"registry.reg", "registry.reg.lock"}));
}

TEST_F(registry_file, permissions_and_links_stay) {
  const auto target = folder / "target.reg";
  write(target, "");
  std::filesystem::permissions(target,
                               std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  std::filesystem::create_symlink(target, file);
  EXPECT_TRUE(ovf::set_registry_number(user, u"a", 1));
  EXPECT_TRUE(std::filesystem::is_symlink(file));
  EXPECT_NE(content_of(target).find("\"a\"=dword:00000001"), std::string::npos);
  EXPECT_EQ(std::filesystem::status(target).permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(registry_file, a_link_to_a_file_that_is_not_there_yet_stays_one) {
  std::filesystem::create_directory(folder / "data");
  std::filesystem::create_symlink("data/middle.reg", file);
  std::filesystem::create_symlink("target.reg", folder / "data" / "middle.reg");
  EXPECT_TRUE(ovf::set_registry_number(user, u"a", 1));
  EXPECT_TRUE(std::filesystem::is_symlink(file));
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "data" / "middle.reg"));
  EXPECT_NE(content_of(folder / "data" / "target.reg").find("\"a\"=dword:00000001"), std::string::npos);
}

TEST_F(registry_file, a_circle_of_links_is_refused) {
  std::filesystem::create_symlink("registry.reg", file);
  EXPECT_FALSE(ovf::set_registry_number(user, u"a", 1));
  EXPECT_TRUE(std::filesystem::is_symlink(file));
}

/// Runs a body in a child process, which must not leave any other way.
template <class Body>
pid_t child(Body&& body) {
  const pid_t id = fork();
  if (id == 0) {
    body();
    _exit(0);
  }
  return id;
}

/// A lock that somebody else holds, who asked for it through an open file of their own.
class held_lock {
 public:
  explicit held_lock(const std::filesystem::path& of)
      : descriptor_(open((of.string() + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644)) {
    EXPECT_EQ(flock(descriptor_, LOCK_EX | LOCK_NB), 0);
  }
  held_lock(const held_lock&) = delete;
  held_lock& operator=(const held_lock&) = delete;
  ~held_lock() { close(descriptor_); }

 private:
  int descriptor_;
};

TEST_F(registry_file, whoever_comes_by_a_link_waits_for_whoever_comes_by_the_file) {
  const auto target = folder / "target.reg";
  write(target, "");
  std::filesystem::create_symlink(target, file);
  std::optional<held_lock> held(target);
  std::atomic<bool> done = false;
  std::thread writer([&] { done = ovf::set_registry_number(user, u"a", 1); });
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  EXPECT_FALSE(done);
  EXPECT_EQ(content_of(target), "");
  held.reset();
  writer.join();
  EXPECT_TRUE(done);
  EXPECT_EQ(ovf::registry_number(user, u"a"), 1u);
}

TEST_F(registry_file, a_lock_that_nobody_lets_go_ends_the_write_after_a_while) {
  EXPECT_TRUE(ovf::set_registry_number(user, u"a", 1));
  constexpr std::chrono::milliseconds longest_wait{200};
  const held_lock held(file);
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_FALSE(ovf::change_registry_within(
      longest_wait,
      {{.what = ovf::registry_change::action::set_number, .key = user, .name = u"a", .number = 2}}));
  EXPECT_EQ(errno, EBUSY);
  EXPECT_GE(std::chrono::steady_clock::now() - begin, longest_wait);
  EXPECT_EQ(ovf::registry_number(user, u"a"), 1u);
}

TEST_F(registry_file, a_lock_made_by_another_user_serves_as_well) {
  constexpr uid_t other = 65534;
  const bool is_superuser = geteuid() == 0;
  const auto lock = file.string() + ".lock";
  const mode_t mask = umask(022);
  EXPECT_TRUE(ovf::set_registry_number(user, u"a", 1));
  umask(mask);
  struct stat facts {};
  ASSERT_EQ(stat(lock.c_str(), &facts), 0);
  EXPECT_EQ(facts.st_mode & 07777, 0644u);
  // The superuser's lock in a user's folder; a user's own that they may only read does the same.
  ASSERT_EQ(is_superuser ? chown(folder.c_str(), other, other) : chmod(lock.c_str(), 0444), 0);
  const pid_t id = child([&] {
    if (is_superuser && (setgid(other) != 0 || setuid(other) != 0)) _exit(2);
    if (!ovf::set_registry_number(user, u"a", 2)) _exit(1);
  });
  int status = -1;
  waitpid(id, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(ovf::registry_number(user, u"a"), 2u);
}

TEST_F(registry_file, lies_in_the_configuration_folder_when_nothing_else_is_said) {
  unset("OVFILE_REGISTRY");
  set("XDG_CONFIG_HOME", (folder / "config").string());
  set("HOME", (folder / "home").string());
  EXPECT_TRUE(ovf::set_registry_number(user, u"a", 1));
  EXPECT_TRUE(std::filesystem::exists(folder / "config" / "orvexa" / "registry.reg"));
  unset("XDG_CONFIG_HOME");
  EXPECT_TRUE(ovf::set_registry_number(user, u"a", 1));
  EXPECT_TRUE(std::filesystem::exists(folder / "home" / ".config" / "orvexa" / "registry.reg"));
}

TEST_F(registry_file, processes_that_write_at_once_lose_nothing) {
  constexpr int processes = 4;
  constexpr int values = 40;
  std::vector<pid_t> children;
  for (int p = 0; p < processes; ++p) {
    children.push_back(child([&] {
      for (int i = 0; i < values; ++i) {
        const std::u16string name{static_cast<char16_t>(u'A' + p), static_cast<char16_t>(u'0' + i)};
        if (!ovf::set_registry_number(user, name, static_cast<std::uint32_t>(i))) _exit(1);
      }
    }));
  }
  for (const pid_t id : children) {
    int status = 1;
    waitpid(id, &status, 0);
    EXPECT_EQ(status, 0);
  }
  for (int p = 0; p < processes; ++p) {
    for (int i = 0; i < values; ++i) {
      const std::u16string name{static_cast<char16_t>(u'A' + p), static_cast<char16_t>(u'0' + i)};
      EXPECT_EQ(ovf::registry_number(user, name), static_cast<std::uint32_t>(i)) << p << ' ' << i;
    }
  }
}

TEST_F(registry_file, a_kill_leaves_the_old_text_or_the_new_one) {
  std::u16string filling(20000, u'x');
  EXPECT_TRUE(ovf::set_registry_text(user, u"filling", filling));
  EXPECT_TRUE(ovf::set_registry_number(user, u"n", 0));
  for (int round = 0; round < 30; ++round) {
    const pid_t id = child([&] {
      for (std::uint32_t n = 1;; ++n) ovf::set_registry_number(user, u"n", n);
    });
    usleep(static_cast<useconds_t>(500 + 400 * round));
    kill(id, SIGKILL);
    waitpid(id, nullptr, 0);
    ASSERT_TRUE(ovf::registry_number(user, u"n").has_value());
    ASSERT_EQ(ovf::registry_text(user, u"filling"), filling);
    // A lock that a killed process held is free again.
    ASSERT_TRUE(ovf::set_registry_number(user, u"n", 0));
  }
}

}  // namespace
