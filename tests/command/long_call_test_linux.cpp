// Long calls of the library: they show how far they have come, and a signal ends them.
#include <fcntl.h>
#include <pty.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

#include "command/edit_fixture.h"

namespace {

using ovtest::names;

/// A signal that is sent as soon as the terminal has seen these words.
struct answer {
  std::string words;
  int signal = 0;
};

class long_call_test : public ovtest::edit_test {
 protected:
  static std::string program() {
    const char* const set = std::getenv("OVFILE_COMMAND");
    return set != nullptr ? set : OVFILE_COMMAND_PATH;
  }

  void make_long_table() const {
    std::string csv = "A,B\n";
    for (int i = 0; i < 200000; ++i)
      csv += std::to_string(200000 - i) + ".5,text " + std::to_string(i) + "\n";
    write("in.csv", csv);
    run_quietly({"import", "in.csv", "t.ovt"});
  }

  /// Starts the program in the folder and does not wait for it.
  pid_t start(names arguments) const {
    arguments.insert(arguments.begin(), "ovfile");
    std::vector<char*> values;
    for (std::string& argument : arguments) values.push_back(argument.data());
    values.push_back(nullptr);
    const std::string path = program();
    const pid_t child = ::fork();
    if (child != 0) return child;
    if (::chdir(folder().path().c_str()) != 0 || ::freopen("/dev/null", "w", stderr) == nullptr) ::_exit(127);
    ::execv(path.c_str(), values.data());
    ::_exit(127);
  }

  bool copy_is_there() const {
    const names there = files();
    return std::any_of(there.begin(), there.end(), [](const auto& name) { return name.starts_with(".NEW"); });
  }

  /// Sends the signal as soon as the new table is being written. Returns what waitpid tells of the end.
  int stop_while_writing(const names& arguments, int signal) const {
    const pid_t child = start(arguments);
    int status = 0;
    while (::waitpid(child, &status, WNOHANG) == 0) {
      if (!copy_is_there()) continue;
      ::kill(child, signal);
      ::waitpid(child, &status, 0);
      return status;
    }
    return status;
  }

  /// What a shell script writes to a terminal; $OVFILE is the program.
  std::string on_terminal(const std::string& script, int& status, const answer& sent = {}) const {
    ovtest::set_environment("OVFILE", program());
    int terminal = -1;
    const pid_t child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
      if (::chdir(folder().path().c_str()) != 0) ::_exit(127);
      ::execl("/bin/sh", "sh", "-c", script.c_str(), static_cast<char*>(nullptr));
      ::_exit(127);
    }
    std::string seen;
    bool waits = sent.signal != 0;
    char bytes[4096];
    for (ssize_t done = 0; (done = ::read(terminal, bytes, sizeof bytes)) > 0;) {
      seen.append(bytes, static_cast<std::size_t>(done));
      if (waits && seen.find(sent.words) != seen.npos) {
        ::kill(child, sent.signal);
        waits = false;
      }
    }
    ::close(terminal);
    ::waitpid(child, &status, 0);
    return seen;
  }

  /// What the program shows on a terminal when its bar need not wait.
  std::string seen_at_once(const std::string& arguments) const {
    ovtest::set_environment("OVFILE_PROGRESS", "0");
    int status = -1;
    std::string seen = on_terminal("exec \"$OVFILE\" " + arguments + " >/dev/null", status);
    ovtest::set_environment("OVFILE_PROGRESS", "");
    EXPECT_EQ(status, 0);
    return seen;
  }
};

/// A named pipe that takes nothing: whoever has something to say waits, however fast the work was.
class full_pipe {
 public:
  explicit full_pipe(const std::filesystem::path& name) {
    if (::mkfifo(name.c_str(), 0600) == 0) handle_ = ::open(name.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    EXPECT_GE(handle_, 0);
    for (const std::string some(4096, ' '); handle_ >= 0;) {
      if (::write(handle_, some.data(), some.size()) < 0) break;
    }
  }
  ~full_pipe() { ::close(handle_); }
  full_pipe(const full_pipe&) = delete;
  full_pipe& operator=(const full_pipe&) = delete;

 private:
  int handle_ = -1;
};

struct stopped_work {
  names arguments;
  int signal;
};

const std::vector<stopped_work> rebuilding = {{{"sort", "t.ovt", "--by", "A"}, SIGINT},
                                              {{"sort", "t.ovt", "--by", "A"}, SIGTERM},
                                              {{"alter", "t.ovt", "--drop", "B"}, SIGTERM},
                                              {{"alter", "t.ovt", "--drop", "B"}, SIGHUP},
                                              {{"delete-rows", "t.ovt", "--rows", "5-10000"}, SIGINT}};

TEST_F(long_call_test, a_signal_while_a_table_is_written_anew_leaves_the_old_one) {
  make_long_table();
  const std::string before = read("t.ovt");
  for (const stopped_work& work : rebuilding) {
    SCOPED_TRACE(work.arguments.front() + " and signal " + std::to_string(work.signal));
    bool stopped = false;
    // The signal may come when the new table stands there already.
    for (int attempt = 0; attempt < 20 && !stopped; ++attempt) {
      write("t.ovt", before);
      const int status = stop_while_writing(work.arguments, work.signal);
      EXPECT_EQ(files(), (names{"in.csv", "t.ovt"}));
      stopped = WIFSIGNALED(status);
      if (!stopped) continue;
      EXPECT_EQ(WTERMSIG(status), work.signal);
      EXPECT_TRUE(read("t.ovt") == before);
    }
    EXPECT_TRUE(stopped);
  }
}

TEST_F(long_call_test, a_signal_ends_a_signature) {
  make_long_table();
  const std::string before = read("t.ovt");
  const full_pipe output(folder() / "full");
  ovtest::set_environment("OVFILE_PROGRESS", "0");
  for (const int signal : {SIGINT, SIGTERM}) {
    int status = 0;
    const std::string seen =
        on_terminal("exec \"$OVFILE\" sign t.ovt >full", status, {"\rsigning [", signal});
    EXPECT_NE(seen.find("\rsigning ["), seen.npos) << seen;
    EXPECT_EQ(seen.substr(seen.size() - 4), "\r\x1B[K") << "wiped away";
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << status;
    EXPECT_TRUE(read("t.ovt") == before);
  }
  ovtest::set_environment("OVFILE_PROGRESS", "");
}

TEST_F(long_call_test, a_terminal_sees_how_far_a_new_table_has_come) {
  make_long_table();
  for (const char* arguments :
       {"alter t.ovt --drop B", "sort t.ovt --by A", "delete-rows t.ovt --rows 1,3"}) {
    const std::string seen = seen_at_once(arguments);
    EXPECT_NE(seen.find("\rwriting ["), seen.npos) << arguments << ": " << seen;
    EXPECT_NE(seen.find("\r\x1B[K"), seen.npos) << arguments << ": " << seen;
  }
}

TEST_F(long_call_test, a_terminal_sees_how_far_a_signature_has_come) {
  make_long_table();
  const std::string seen = seen_at_once("sign t.ovt");
  EXPECT_NE(seen.find("\rsigning ["), seen.npos) << seen;
  EXPECT_EQ(seen.substr(seen.size() - 4), "\r\x1B[K") << "wiped away";
}

TEST_F(long_call_test, a_terminal_sees_no_bar_for_quick_work) {
  write("in.csv", "A\n2\n1\n");
  run_quietly({"import", "in.csv", "t.ovt"});
  ovtest::set_environment("OVFILE_PROGRESS", "1e9");  // beyond a day: as if it were not set
  int status = -1;
  EXPECT_EQ(on_terminal("exec \"$OVFILE\" sort t.ovt --by A", status), "");
  ovtest::set_environment("OVFILE_PROGRESS", "");
  EXPECT_EQ(status, 0);
}

}  // namespace
