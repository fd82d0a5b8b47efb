// What happens when the world outside ends the work: signals, closed pipes, full disks, terminals.
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "command/command_test.h"
#include "command/first_bytes_linux.h"
#include "ovfile/smart.h"
#include "support/started_program_linux.h"

namespace {

using names = std::vector<std::string>;

class stopping_test : public ovtest::command_test {
 protected:
  /// A table whose CSV is some megabytes long.
  void make_long_table() const {
    std::string csv = "A,B\n";
    for (int i = 0; i < 200000; ++i) csv += std::to_string(i) + ".5,text " + std::to_string(i) + "\n";
    write("in.csv", csv);
    run_quietly({"import", "in.csv", "t.ovt"});
  }
};

TEST_F(stopping_test, a_reader_that_leaves_is_no_failure) {
  make_long_table();
  const ovtest::process_result result = shell("{ \"$OVFILE\" export t.ovt; echo $? >status; } | head -n 1");
  EXPECT_EQ(result.output, "A,B\n");
  EXPECT_EQ(result.error, "");
  EXPECT_EQ(read("status"), "0\n");
}

TEST_F(stopping_test, an_output_that_is_full_is_a_failure) {
  if (::access("/dev/full", W_OK) != 0) GTEST_SKIP() << "/dev/full is not there";
  round_trip("A\n1\n");
  for (const char* arguments : {"export t.ovt", "head t.ovt", "info t.ovt", "--help"}) {
    const ovtest::process_result result = shell("exec \"$OVFILE\" " + std::string(arguments) + " >/dev/full");
    EXPECT_EQ(result.status, 1) << arguments;
    EXPECT_EQ(result.error, "ovfile: cannot write standard output: No space left on device\n") << arguments;
  }
}

TEST_F(stopping_test, a_closed_output_is_a_failure) {
  round_trip("A\n1\n");
  EXPECT_EQ(shell("exec \"$OVFILE\" export t.ovt >&-").status, 1);
}

TEST_F(stopping_test, messages_without_a_stream_do_not_end_up_in_the_table) {
  write("in.csv", "Au_Lagrange\n1\n");
  EXPECT_EQ(shell("exec \"$OVFILE\" import in.csv t.ovt <&- >&- 2>&-").status, 0);
  const std::string quiet = read("t.ovt");
  EXPECT_EQ(run({"import", "in.csv", "t.ovt"}).status, 0);
  EXPECT_TRUE(read("t.ovt") == quiet);
}

TEST_F(stopping_test, a_file_that_may_not_grow_leaves_no_table) {
  make_long_table();
  const std::string before = read("t.ovt");
  write("small.csv", "A\n1\n");
  const ovtest::process_result result = shell("ulimit -f 200; exec \"$OVFILE\" import in.csv t.ovt");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.error.substr(0, 28), "ovfile: cannot write t.ovt: ");
  EXPECT_EQ(result.error.find(".NEW"), result.error.npos) << result.error;
  EXPECT_EQ(result.error.find('\n'), result.error.size() - 1);
  EXPECT_TRUE(read("t.ovt") == before);
  const ovtest::process_result text = shell("ulimit -f 200; exec \"$OVFILE\" export t.ovt out.csv");
  EXPECT_EQ(text.status, 1);
  EXPECT_EQ(text.error, "ovfile: cannot write out.csv: File too large\n");
  EXPECT_EQ(files(), (names{"in.csv", "small.csv", "t.ovt"}));
}

TEST_F(stopping_test, a_table_that_cannot_be_begun_is_told_with_the_reason) {
  round_trip("A\n1\n");
  for (const char* arguments : {"import in.csv u.ovt", "import in.csv u.ovt --single",
                                "new u.ovt --template points", "verify t.ovt --salvage u.ovt"}) {
    SCOPED_TRACE(arguments);
    const ovtest::process_result result = shell("ulimit -f 1; exec \"$OVFILE\" " + std::string(arguments));
    EXPECT_NE(result.status, 0);
    EXPECT_EQ(result.error, "ovfile: cannot write u.ovt: File too large\n");
  }
  EXPECT_EQ(files(), (names{"in.csv", "t.ovt"}));
}

TEST_F(stopping_test, a_signal_leaves_no_table) {
  make_long_table();
  const std::string before = read("t.ovt");
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    ovtest::started_program started({program(), "import", "in.csv", "t.ovt"}, folder().path());
    EXPECT_NE(goes_on_to_first_bytes(started, folder().path()), std::filesystem::path());
    const ovtest::ended_program end = started.wait_after(signal);
    EXPECT_TRUE(end.was_ended_by(signal)) << end.status;
    EXPECT_TRUE(read("t.ovt") == before);
    EXPECT_EQ(files(), (names{"in.csv", "t.ovt"}));
  }
}

TEST_F(stopping_test, a_signal_leaves_the_old_table_or_the_new_one) {
  std::string csv = "A,B\n";
  for (int i = 0; i < 60000; ++i) csv += std::to_string(60000 - i) + ",text\n";
  write("in.csv", csv);
  run_quietly({"import", "in.csv", "old.ovt"});
  const std::string before = read("old.ovt");
  const std::vector<names> works = {{"sort", "t.ovt", "--by", "A"},
                                    {"alter", "t.ovt", "--drop", "A"},
                                    {"delete-rows", "t.ovt", "--where", "A > 100"},
                                    {"set", "t.ovt", "A=5", "--where", "A > 100"}};
  for (const names& work : works) {
    write("t.ovt", before);
    EXPECT_EQ(run(work).status, 0);
    const std::string after = read("t.ovt");
    EXPECT_TRUE(before != after);
    for (const int milliseconds : {0, 5, 10, 20, 30, 40, 60, 90}) {
      SCOPED_TRACE(work.front() + " after " + std::to_string(milliseconds));
      write("t.ovt", before);
      names arguments = work;
      arguments.insert(arguments.begin(), program());
      ovtest::started_program started(arguments, folder().path());
      started.go_on();
      std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
      (void)started.wait_after(SIGINT);
      const std::string left = read("t.ovt");
      EXPECT_TRUE(left == before || left == after);
      EXPECT_EQ(files(), (names{"in.csv", "old.ovt", "t.ovt"}));
    }
  }
}

TEST_F(stopping_test, differences_that_nobody_reads_are_differences) {
  make_long_table();
  write("b.csv", "A,B\n1,x\n");
  run_quietly({"import", "b.csv", "u.ovt"});
  (void)shell("{ \"$OVFILE\" diff t.ovt u.ovt; echo $? >status; } | head -n 1");
  EXPECT_EQ(read("status"), "1\n");
  if (::access("/dev/full", W_OK) != 0) GTEST_SKIP() << "/dev/full is not there";
  EXPECT_EQ(shell("exec \"$OVFILE\" diff t.ovt u.ovt >/dev/full").status, 2);
}

TEST_F(stopping_test, a_table_that_is_open_elsewhere_is_not_written_anew) {
  round_trip("A\n2\n1\n");
  const std::string before = read("t.ovt");
  const auto reader = ovfile::create_table();
  const ovfile::text name{std::string_view((folder() / "t.ovt").string())};
  ASSERT_EQ(reader->Open(name.get(), 1), S_OK);
  expect_failure({"sort", "t.ovt", "--by", "A"}, "cannot replace t.ovt: it is open in another program");
  EXPECT_EQ(reader->Close(), S_OK);
  EXPECT_TRUE(read("t.ovt") == before);
  EXPECT_EQ(files(), (names{"in.csv", "t.ovt"}));
}

TEST_F(stopping_test, a_table_that_is_sorted_is_not_written) {
  round_trip("A\n1\n1\n2\n");
  const auto before = std::filesystem::last_write_time(folder() / "t.ovt");
  std::filesystem::last_write_time(folder() / "t.ovt", before - std::chrono::hours(1));
  run_quietly({"sort", "t.ovt", "--by", "A"});
  EXPECT_EQ(std::filesystem::last_write_time(folder() / "t.ovt"), before - std::chrono::hours(1));
}

TEST_F(stopping_test, a_link_stays_a_link) {
  round_trip("A\n1\n");
  std::filesystem::create_directory(folder() / "real");
  std::filesystem::rename(folder() / "t.ovt", folder() / "real" / "t.ovt");
  std::filesystem::create_symlink("real/t.ovt", folder() / "t.ovt");
  EXPECT_EQ(round_trip("B\n2\n"), "B\n2\n");
  EXPECT_TRUE(std::filesystem::is_symlink(folder() / "t.ovt"));
  EXPECT_EQ(run_quietly({"export", "real/t.ovt"}), "B\n2\n");
}

TEST_F(stopping_test, a_link_stays_a_link_whatever_changes_the_table) {
  const std::vector<std::pair<names, std::string>> works = {
      {{"sort", "t.ovt", "--by", "A"}, "A,B\n1,y\n2,x\n3,z\n"},
      {{"alter", "t.ovt", "--drop", "B"}, "A\n2\n1\n3\n"},
      {{"delete-rows", "t.ovt", "--rows", "2"}, "A,B\n2,x\n3,z\n"},
      {{"truncate", "t.ovt", "--rows", "1"}, "A,B\n2,x\n"}};
  std::filesystem::create_directory(folder() / "real");
  for (const auto& [work, expected] : works) {
    SCOPED_TRACE(work.front());
    std::filesystem::remove(folder() / "t.ovt");
    round_trip("A,B\n2,x\n1,y\n3,z\n");
    std::filesystem::rename(folder() / "t.ovt", folder() / "real" / "t.ovt");
    std::filesystem::create_symlink("real/t.ovt", folder() / "t.ovt");
    EXPECT_EQ(run(work).status, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(folder() / "t.ovt"));
    EXPECT_EQ(run_quietly({"export", "real/t.ovt"}), expected);
    EXPECT_EQ(files(), (names{"in.csv", "real", "t.ovt"}));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder() / "real"), {}), 1);
  }
}

TEST_F(stopping_test, a_pipe_can_be_imported) {
  const ovtest::process_result result = shell(
      "mkfifo p; { printf 'A,B\\n1,x\\n'; printf '2,yyyyy\\n'; } >p & \"$OVFILE\" import p t.ovt; rm p");
  EXPECT_EQ(result.error, "");
  EXPECT_EQ(run_quietly({"export", "t.ovt"}), "A,B\n1,x\n2,yyyyy\n");
}

TEST_F(stopping_test, a_terminal_sees_a_bar_only_when_the_work_lasts) {
  make_long_table();
  const auto [end, slow] = ovtest::on_terminal(
      "{ head -n 5000 in.csv; sleep 1.3; tail -n +5001 in.csv; } | \"$OVFILE\" import - u.ovt",
      folder().path());
  EXPECT_EQ(end.status, 0);
  EXPECT_EQ(slow.find("\rreading standard input"), 0u) << slow;
  EXPECT_EQ(ovtest::left_on_terminal(slow), "") << slow;
  const ovtest::shown quick = ovtest::on_terminal("\"$OVFILE\" head t.ovt >/dev/null", folder().path());
  EXPECT_EQ(quick.end.status, 0);
  EXPECT_EQ(quick.text, "");
}

}  // namespace
