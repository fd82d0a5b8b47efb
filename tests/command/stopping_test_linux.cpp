// What happens when the world outside ends the work: signals, closed pipes, full disks, terminals.
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "command/command_test.h"
#include "ovfile/smart.h"

namespace {

using names = std::vector<std::string>;

class stopping_test : public ovtest::command_test {
 protected:
  /// Runs a shell script in which $OVFILE is the program.
  ovtest::process_result shell(const std::string& script) const {
    const char* const set = std::getenv("OVFILE_COMMAND");
    ovtest::set_environment("OVFILE", set != nullptr ? set : OVFILE_COMMAND_PATH);
    return ovtest::run_process({"/bin/sh", "-c", script}, folder().path());
  }

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

/// Starts the import of a long CSV and sends the signal as soon as the new table is being written.
/// Returns how the program ended, as waitpid tells it.
int stop_import(const std::string& program, const std::filesystem::path& folder, int signal) {
  const pid_t child = ::fork();
  if (child == 0) {
    if (::chdir(folder.c_str()) != 0) ::_exit(127);
    ::execl(program.c_str(), "ovfile", "import", "long.csv", "t.ovt", static_cast<char*>(nullptr));
    ::_exit(127);
  }
  int status = 0;
  while (::waitpid(child, &status, WNOHANG) == 0) {
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
      if (!entry.path().filename().string().starts_with(".NEW")) continue;
      ::kill(child, signal);
      ::waitpid(child, &status, 0);
      return status;
    }
  }
  return status;
}

TEST_F(stopping_test, a_signal_leaves_no_table) {
  make_long_table();
  const std::string before = read("t.ovt");
  std::string rows = read("in.csv").substr(4);
  for (int i = 0; i < 2; ++i) rows += rows;
  write("long.csv", "A,B\n" + rows);
  const char* const set = std::getenv("OVFILE_COMMAND");
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    const int status = stop_import(set != nullptr ? set : OVFILE_COMMAND_PATH, folder().path(), signal);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << status;
    EXPECT_TRUE(read("t.ovt") == before);
    EXPECT_EQ(files(), (names{"in.csv", "long.csv", "t.ovt"}));
  }
}

/// Runs the program and sends it the signal after so many milliseconds, unless it is done before.
void stop_after(const std::string& program, const std::filesystem::path& folder, names arguments,
                int milliseconds, int signal) {
  arguments.insert(arguments.begin(), "ovfile");
  std::vector<char*> values;
  for (std::string& argument : arguments) values.push_back(argument.data());
  values.push_back(nullptr);
  const pid_t child = ::fork();
  if (child == 0) {
    if (::chdir(folder.c_str()) != 0 || ::close(2) != 0) ::_exit(127);
    ::execv(program.c_str(), values.data());
    ::_exit(127);
  }
  ::usleep(static_cast<useconds_t>(milliseconds) * 1000);
  ::kill(child, signal);
  int status = 0;
  ::waitpid(child, &status, 0);
}

TEST_F(stopping_test, a_signal_leaves_the_old_table_or_the_new_one) {
  std::string csv = "A,B\n";
  for (int i = 0; i < 60000; ++i) csv += std::to_string(60000 - i) + ",text\n";
  write("in.csv", csv);
  run_quietly({"import", "in.csv", "old.ovt"});
  const std::string before = read("old.ovt");
  const char* const set = std::getenv("OVFILE_COMMAND");
  const std::string program = set != nullptr ? set : OVFILE_COMMAND_PATH;
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
      stop_after(program, folder().path(), work, milliseconds, SIGINT);
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

/// What a shell script writes to standard error when that is a terminal.
std::string on_terminal(const std::string& script, const std::filesystem::path& folder, int& status) {
  int terminal = -1;
  const pid_t child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
  if (child == 0) {
    if (::chdir(folder.c_str()) != 0) ::_exit(127);
    ::execl("/bin/sh", "sh", "-c", script.c_str(), static_cast<char*>(nullptr));
    ::_exit(127);
  }
  std::string seen;
  char bytes[4096];
  for (ssize_t done = 0; (done = ::read(terminal, bytes, sizeof bytes)) > 0;) {
    seen.append(bytes, static_cast<std::size_t>(done));
  }
  ::close(terminal);
  ::waitpid(child, &status, 0);
  return seen;
}

TEST_F(stopping_test, a_terminal_sees_a_bar_only_when_the_work_lasts) {
  make_long_table();
  const char* const set = std::getenv("OVFILE_COMMAND");
  ovtest::set_environment("OVFILE", set != nullptr ? set : OVFILE_COMMAND_PATH);
  int status = -1;
  const std::string slow =
      on_terminal("{ head -n 5000 in.csv; sleep 1.3; tail -n +5001 in.csv; } | \"$OVFILE\" import - u.ovt",
                  folder().path(), status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(slow.find("\rreading standard input"), 0u) << slow;
  EXPECT_EQ(slow.substr(slow.size() - 4), "\r\x1B[K") << "wiped away";
  const std::string quick = on_terminal("\"$OVFILE\" head t.ovt >/dev/null", folder().path(), status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(quick, "");
}

}  // namespace
