#include <fcntl.h>
#include <poll.h>
#include <signal.h>  // NOLINT(modernize-deprecated-headers): kill is in this one alone
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "child_process.h"
#include "console.h"
#include "failure.h"

namespace command {
namespace {

constexpr int look_milliseconds = 100;
/// More than anybody reads.
constexpr std::size_t most_words = 1 << 16;

class pipe_ends {
 public:
  pipe_ends() {
    if (::pipe2(ends_, O_CLOEXEC) != 0) throw failure("cannot make a pipe: " + last_reason());
  }
  ~pipe_ends() {
    close_writer();
    ::close(ends_[0]);
  }
  pipe_ends(const pipe_ends&) = delete;
  pipe_ends& operator=(const pipe_ends&) = delete;

  int reader() const noexcept { return ends_[0]; }
  int writer() const noexcept { return ends_[1]; }
  void close_writer() noexcept {
    if (ends_[1] >= 0) ::close(ends_[1]);
    ends_[1] = -1;
  }

 private:
  int ends_[2] = {-1, -1};
};

/// What is set for the child before it begins.
class spawn_settings {
 public:
  spawn_settings(const child_call& call, int words) {
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawnattr_init(&attributes);
    if (call.input == nullptr) {
      ::posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    } else {
      ::posix_spawn_file_actions_adddup2(&actions, call.input->handle(), 0);
    }
    ::posix_spawn_file_actions_adddup2(&actions, call.output == nullptr ? words : call.output->handle(), 1);
    ::posix_spawn_file_actions_adddup2(&actions, words, 2);
    // We ignore them, which it would go on with.
    sigset_t defaults;
    ::sigemptyset(&defaults);
    ::sigaddset(&defaults, SIGPIPE);
    ::sigaddset(&defaults, SIGXFSZ);
    ::posix_spawnattr_setsigdefault(&attributes, &defaults);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
  }
  ~spawn_settings() {
    ::posix_spawnattr_destroy(&attributes);
    ::posix_spawn_file_actions_destroy(&actions);
  }
  spawn_settings(const spawn_settings&) = delete;
  spawn_settings& operator=(const spawn_settings&) = delete;

  posix_spawn_file_actions_t actions{};
  posix_spawnattr_t attributes{};
};

/// Does not outlive this object.
class child {
 public:
  child(const child_call& call, int words) {
    const spawn_settings settings(call, words);
    std::vector<std::string> arguments = call.arguments;
    std::vector<char*> values;
    values.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) values.push_back(argument.data());
    values.push_back(nullptr);
    errno =
        ::posix_spawnp(&number_, values[0], &settings.actions, &settings.attributes, values.data(), environ);
    if (errno != 0) throw failure("cannot start " + arguments[0] + ": " + last_reason());
    runs_ = true;
  }
  ~child() {
    // It has nothing to clean up: what it writes is ours.
    if (runs_) ::kill(number_, SIGKILL);
    if (runs_) (void)wait();
  }
  child(const child&) = delete;
  child& operator=(const child&) = delete;

  int wait() noexcept {
    int status = 0;
    while (::waitpid(number_, &status, 0) < 0 && errno == EINTR) {
    }
    runs_ = false;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }

 private:
  pid_t number_ = 0;
  bool runs_ = false;
};

/// Waits a moment for words and takes what is there; false at their end.
bool take_words(int reader, std::string& words) {
  pollfd asked{reader, POLLIN, 0};
  if (::poll(&asked, 1, look_milliseconds) <= 0) return true;
  char bytes[4096];
  const ssize_t done = ::read(reader, bytes, sizeof bytes);
  if (done < 0) return errno == EINTR;
  if (words.size() < most_words) words.append(bytes, static_cast<std::size_t>(done));
  return done > 0;
}

}  // namespace

child_end run_child(const child_call& call, const std::function<void()>& look) {
  pipe_ends words;
  child running(call, words.writer());
  words.close_writer();
  child_end end;
  while (take_words(words.reader(), end.words)) {
    throw_if_interrupted();
    look();
  }
  end.status = running.wait();
  throw_if_interrupted();
  return end;
}

std::string own_program() { return "/proc/self/exe"; }

}  // namespace command
