// Tables that the system keeps from being opened or replaced: the reason is told.
#include <sys/stat.h>
#include <unistd.h>

#include "command/command_test.h"
#include "ovfile/smart.h"

namespace {

using names = std::vector<std::string>;

class refused_files_test : public ovtest::command_test {
 protected:
  static std::string program() {
    const char* const set = std::getenv("OVFILE_COMMAND");
    return set != nullptr ? set : OVFILE_COMMAND_PATH;
  }

  /// As a user to whom permissions apply.
  ovtest::process_result run_as_user(const names& arguments) const {
    names all = as_user();
    all.push_back(program());
    all.insert(all.end(), arguments.begin(), arguments.end());
    return ovtest::run_process(all, folder().path());
  }

  static bool can_be_user() {
    names all = as_user();
    all.emplace_back("true");
    return ::geteuid() != 0 || ovtest::run_process(all, ".").status == 0;
  }

  void expect_refused(const names& arguments, const std::string& line) const {
    const ovtest::process_result result = run_as_user(arguments);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, "ovfile: " + line + "\n");
  }

  /// A table whose header has no room for another column.
  void make_wide_table() const {
    std::string header = "C1";
    std::string row = "1";
    for (int i = 2; i <= 68; ++i) {
      header += ",C" + std::to_string(i);
      row += ",1";
    }
    round_trip(header + "\n2" + row.substr(1) + "\n" + row + "\n");
  }

  void set_mode(const std::string& name, mode_t mode) const {
    ASSERT_EQ(::chmod((folder() / name).c_str(), mode), 0);
  }

 private:
  static names as_user() {
    if (::geteuid() != 0) return {"/usr/bin/env"};
    return {"/usr/bin/setpriv", "--bounding-set=-dac_override,-dac_read_search"};
  }
};

TEST_F(refused_files_test, a_table_that_may_not_be_read_is_told_in_one_line) {
  if (!can_be_user()) GTEST_SKIP() << "the superuser's rights cannot be given up";
  round_trip("A\n1\n");
  set_mode("t.ovt", 0);
  for (const names& arguments : {names{"info", "t.ovt"}, {"export", "t.ovt"}, {"diff", "t.ovt", "t.ovt"}}) {
    const ovtest::process_result result = run_as_user(arguments);
    EXPECT_EQ(result.status, arguments[0] == "diff" ? 2 : 1);
    EXPECT_EQ(result.error, "ovfile: cannot open t.ovt: Permission denied\n");
  }
  expect_refused({"rename", "t.ovt", "A", "B"}, "cannot open t.ovt: Permission denied");
}

TEST_F(refused_files_test, a_table_that_may_not_be_changed_is_told_in_one_line) {
  if (!can_be_user()) GTEST_SKIP() << "the superuser's rights cannot be given up";
  round_trip("A\n2\n1\n");
  set_mode("t.ovt", 0444);
  for (const names& arguments : {names{"rename", "t.ovt", "A", "B"},
                                 {"set", "t.ovt", "A=1", "--all"},
                                 {"sort", "t.ovt", "--by", "A"},
                                 {"alter", "t.ovt", "--add", "B"},
                                 {"delete-rows", "t.ovt", "--rows", "1"},
                                 {"truncate", "t.ovt", "--rows", "1"}}) {
    expect_refused(arguments, "cannot write t.ovt: Permission denied");
  }
  EXPECT_EQ(run_as_user({"export", "t.ovt"}).output, "A\n2\n1\n");
}

TEST_F(refused_files_test, a_table_that_is_being_written_elsewhere_is_told) {
  round_trip("A\n1\n");
  const ovtest::process_result result = ovtest::run_process(
      {"/usr/bin/flock", "--exclusive", "t.ovt", program(), "info", "t.ovt"}, folder().path());
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.error, "ovfile: cannot open t.ovt: it is open in another program\n");
}

TEST_F(refused_files_test, a_table_that_is_written_elsewhere_is_not_changed) {
  round_trip("A\n2\n1\n");
  write("out.csv", "old");
  const std::string before = read("t.ovt");
  const auto expect_held = [&](const char* held, names arguments, const std::string& line) {
    arguments.insert(arguments.begin(), {"/usr/bin/flock", "--exclusive", held, program()});
    const ovtest::process_result result = ovtest::run_process(arguments, folder().path());
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, "ovfile: " + line + "\n") << arguments[4];
  };
  for (const names& arguments : {names{"set", "t.ovt", "A=1", "--all"},
                                 {"rename", "t.ovt", "A", "B"},
                                 {"default", "t.ovt", "A=1"},
                                 {"sort", "t.ovt", "--by", "A"},
                                 {"alter", "t.ovt", "--add", "B"},
                                 {"delete-rows", "t.ovt", "--rows", "1"},
                                 {"truncate", "t.ovt", "--rows", "1"},
                                 {"sign", "t.ovt"}}) {
    expect_held("t.ovt", arguments, "cannot open t.ovt: it is open in another program");
  }
  expect_held("t.ovt", {"import", "in.csv", "t.ovt"}, "cannot replace t.ovt: it is open in another program");
  expect_held("t.ovt", {"new", "t.ovt", "--template", "points"},
              "cannot replace t.ovt: it is open in another program");
  expect_held("out.csv", {"export", "t.ovt", "out.csv"},
              "cannot replace out.csv: it is open in another program");
  EXPECT_TRUE(read("t.ovt") == before);
  EXPECT_EQ(read("out.csv"), "old");
  EXPECT_EQ(files(), (names{"in.csv", "out.csv", "t.ovt"}));
}

TEST_F(refused_files_test, what_is_no_table_stays_so_while_it_is_open_elsewhere) {
  write("t.ovt", "A,B\n");
  const ovtest::process_result result = ovtest::run_process(
      {"/usr/bin/flock", "--shared", "t.ovt", program(), "info", "t.ovt"}, folder().path());
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.error, "ovfile: t.ovt: Not a valid orvexa table\n");
}

TEST_F(refused_files_test, a_pipe_in_place_of_a_table_holds_nobody_up) {
  ASSERT_EQ(::mkfifo((folder() / "pipe").c_str(), 0600), 0);
  expect_failure({"info", "pipe"}, "pipe: Not a valid orvexa table");
  expect_failure({"info", "."}, ".: Not a valid orvexa table");
}

TEST_F(refused_files_test, what_is_no_file_is_not_verified) {
  ASSERT_EQ(::mkfifo((folder() / "pipe").c_str(), 0600), 0);
  for (const std::string name : {"pipe", "."}) {
    const ovtest::process_result result =
        ovtest::run_process({"/usr/bin/timeout", "20", program(), "verify", name}, folder().path());
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.output, name + ": not read\n");
    EXPECT_EQ(result.error, "ovfile: cannot read " + name +
                                ": it is not a regular file\novfile: not all tables could be read\n");
  }
}

TEST_F(refused_files_test, a_copy_for_a_table_that_is_open_elsewhere_says_so) {
  make_wide_table();
  const std::string before = read("t.ovt");
  const auto reader = ovfile::create_table();
  const ovfile::text name{std::string_view((folder() / "t.ovt").string())};
  ASSERT_EQ(reader->Open(name.get(), 1), S_OK);
  const std::string line = "cannot replace t.ovt: it is open in another program";
  expect_failure({"add-implicit", "t.ovt", "LAST=7"}, line);
  expect_failure({"alter", "t.ovt", "--drop", "C1"}, line);
  expect_failure({"delete-rows", "t.ovt", "--rows", "1"}, line);
  // What is written where it stands needs no copy.
  run_quietly({"rename", "t.ovt", "C1", "D1"});
  run_quietly({"rename", "t.ovt", "D1", "C1"});
  EXPECT_EQ(reader->Close(), S_OK);
  EXPECT_TRUE(read("t.ovt") == before);
  EXPECT_EQ(files(), (names{"in.csv", "t.ovt"}));
}

TEST_F(refused_files_test, a_copy_in_a_folder_that_takes_none_says_so) {
  if (!can_be_user()) GTEST_SKIP() << "the superuser's rights cannot be given up";
  make_wide_table();
  const std::string before = read("t.ovt");
  set_mode(".", 0555);
  const std::string line = "cannot replace t.ovt: no file can be made in its folder: Permission denied";
  expect_refused({"add-implicit", "t.ovt", "LAST=7"}, line);
  expect_refused({"alter", "t.ovt", "--drop", "C1"}, line);
  expect_refused({"sort", "t.ovt", "--by", "C1"}, line);
  expect_refused({"delete-rows", "t.ovt", "--rows", "1"}, line);
  expect_refused({"import", "in.csv", "t.ovt"}, line);
  expect_refused({"export", "t.ovt", "in.csv"},
                 "cannot replace in.csv: no file can be made in its folder: Permission denied");
  expect_refused({"import", "in.csv", "new.ovt"}, "cannot create new.ovt: Permission denied");
  EXPECT_EQ(run_as_user({"rename", "t.ovt", "C1", "D1"}).status, 0);
  EXPECT_EQ(run_as_user({"rename", "t.ovt", "D1", "C1"}).status, 0);
  set_mode(".", 0755);
  EXPECT_TRUE(read("t.ovt") == before);
  EXPECT_EQ(files(), (names{"in.csv", "t.ovt"}));
}

}  // namespace
