// The registry's text file: what stands in it, who may write it at once, and what a kill leaves.
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <vector>

#include "environment_linux.h"
#include "platform/registry.h"

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
