// The session's mark as a file, and who may put one there.
#include <unistd.h>

#include "command/command_test.h"
#include "command/settings_keeper.h"

namespace {

namespace fs = std::filesystem;

using settings_linux_test = ovtest::command_test;

constexpr const char* on_now = "ovfile: long field names are on for programs that start from now on\n";

TEST_F(settings_linux_test, a_folder_that_is_a_link_is_not_used) {
  const fs::path elsewhere = folder() / "elsewhere";
  fs::create_directory(elsewhere);
  ovtest::write_bytes(elsewhere / "MaxFieldNameLength", {});
  fs::create_directory_symlink(elsewhere, folder() / "link");
  for (const char* name : {"link", "link/"}) {
    ovtest::set_environment("OVFILE_ATOMS", (folder() / name).string());
    EXPECT_EQ(run({"settings", "long-field-names", "on", "--now"}).error, on_now);
    EXPECT_TRUE(fs::exists(elsewhere / "MaxFieldNameLength")) << name;
  }
}

TEST_F(settings_linux_test, a_folder_of_another_user_is_not_used) {
  if (::geteuid() != 0) GTEST_SKIP() << "only the superuser can give a folder away";
  const fs::path theirs = folder() / "theirs";
  fs::create_directory(theirs);
  ovtest::write_bytes(theirs / "MaxFieldNameLength", {});
  ASSERT_EQ(::chown(theirs.c_str(), 12345, 12345), 0);
  ovtest::set_environment("OVFILE_ATOMS", theirs);
  EXPECT_EQ(run({"settings", "long-field-names", "on", "--now"}).error, on_now);
  EXPECT_TRUE(fs::exists(theirs / "MaxFieldNameLength"));
}

TEST_F(settings_linux_test, the_runtime_folder_holds_the_mark) {
  ovtest::set_environment("OVFILE_ATOMS", "");
  ovtest::set_environment("XDG_RUNTIME_DIR", folder().path());
  EXPECT_EQ(run({"settings", "long-field-names", "off", "--now"}).error,
            "ovfile: long field names are off for programs that start from now on\n");
  const fs::path mark = folder() / "orvexa-atoms" / "MaxFieldNameLength";
  EXPECT_TRUE(fs::exists(mark));
  EXPECT_EQ(run({"settings", "long-field-names", "on", "--now"}).error, on_now);
  EXPECT_TRUE(fs::exists(mark));
}

TEST_F(settings_linux_test, a_mark_that_cannot_be_removed_stops) {
  const ovtest::settings_keeper keeper;
  ovtest::settings_keeper::unmark();
  const fs::path mark = fs::path(std::getenv("OVFILE_ATOMS")) / "MaxFieldNameLength";
  fs::create_directory(mark);
  const ovtest::process_result result = run({"settings", "long-field-names", "on", "--now"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.error, "ovfile: cannot remove " + mark.string() + ": Is a directory\n");
  EXPECT_FALSE(fs::exists(std::getenv("OVFILE_REGISTRY")));
}

TEST_F(settings_linux_test, a_table_keeps_its_long_names_where_new_ones_are_short) {
  const ovtest::settings_keeper keeper;
  EXPECT_EQ(run({"settings", "long-field-names", "on", "--now"}).status, 0);
  round_trip("A,A_VERY_LONG_NAME,B\n1,2,3\n");
  EXPECT_EQ(run({"settings", "long-field-names", "off", "--now"}).status, 0);
  run_quietly({"alter", "t.ovt", "--drop", "A", "--order", "B"});
  run_quietly({"sort", "t.ovt", "--by", "A_VERY_LONG_NAME"});
  EXPECT_EQ(run_quietly({"export", "t.ovt"}), "B,A_VERY_LONG_NAME\n3,2\n");
}

TEST_F(settings_linux_test, settings_that_cannot_be_written_are_told) {
  const ovtest::settings_keeper keeper;
  ovtest::set_environment("OVFILE_REGISTRY", "/dev/null/registry.reg");
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"settings", "long-field-names", "on"},
        {"settings", "long-field-names", "on", "--now"}}) {
    expect_failure(arguments, "the user's settings cannot be written");
    EXPECT_TRUE(ovtest::settings_keeper::is_marked());
  }
}

}  // namespace
