#include "support/started_program_linux.h"

#include <fcntl.h>
#include <pty.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <utility>

namespace ovtest {
namespace {

std::vector<char*> pointers_to(const std::vector<std::string>& arguments) {
  std::vector<char*> pointers;
  for (const std::string& argument : arguments) pointers.push_back(const_cast<char*>(argument.c_str()));
  pointers.push_back(nullptr);
  return pointers;
}

/// In a process that has just begun.
[[noreturn]] void become(const std::vector<char*>& arguments, const std::filesystem::path& folder,
                         bool stands_still) {
  // Some are ignored where tests run in the background.
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) ::signal(signal, SIG_DFL);
  if (stands_still) (void)::raise(SIGSTOP);
  if (::chdir(folder.c_str()) == 0) ::execv(arguments[0], arguments.data());
  ::_exit(127);
}

pid_t started(pid_t id) {
  if (id < 0) throw std::runtime_error("cannot start a process");
  return id;
}

/// As long as it lives the system stops a program with the first such change in a folder, before the call
/// that makes it returns.
class folder_watch {
 public:
  folder_watch(folder_change kind, const std::filesystem::path& folder, pid_t program)
      : handle_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    const long changes = kind == folder_change::creation ? DN_CREATE : DN_MODIFY;
    if (handle_ < 0 || ::fcntl(handle_, F_SETOWN, program) != 0 || ::fcntl(handle_, F_SETSIG, SIGSTOP) != 0 ||
        ::fcntl(handle_, F_NOTIFY, changes) != 0) {
      ::close(handle_);
      throw std::runtime_error("cannot watch a folder");
    }
  }
  folder_watch(const folder_watch&) = delete;
  folder_watch& operator=(const folder_watch&) = delete;
  ~folder_watch() { ::close(handle_); }

 private:
  int handle_;
};

}  // namespace

bool ended_program::was_ended_by(int signal) const noexcept {
  return WIFSIGNALED(status) && WTERMSIG(status) == signal;
}

started_program::started_program(const std::vector<std::string>& arguments,
                                 const std::filesystem::path& folder, const std::filesystem::path& error) {
  const std::vector<char*> pointers = pointers_to(arguments);
  id_ = started(::fork());
  if (id_ != 0) {
    int status = 0;
    if (has_ended(WUNTRACED, status)) throw std::runtime_error("a process does not stand still");
    return;
  }
  const int messages = ::open(error.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (::dup2(messages, STDERR_FILENO) != STDERR_FILENO) ::_exit(127);
  become(pointers, folder, true);
}

started_program::~started_program() {
  if (id_ == 0) return;
  send(SIGKILL);
  (void)wait();
}

bool started_program::has_ended(int options, int& status) {
  if (id_ == 0) return true;
  struct rusage used {};
  pid_t found = 0;
  do found = ::wait4(id_, &status, options, &used);
  while (found < 0 && errno == EINTR);
  if (found != id_ || WIFSTOPPED(status)) return false;
  end_ = {status, static_cast<std::size_t>(used.ru_maxrss) * 1024};
  id_ = 0;
  return true;
}

void started_program::go_on() const { send(SIGCONT); }

bool started_program::goes_on_to(folder_change kind, const std::filesystem::path& folder) {
  const folder_watch watch(kind, folder, id_);
  go_on();
  int status = 0;
  return !has_ended(WUNTRACED, status);
}

void started_program::send(int signal) const {
  if (id_ != 0) ::kill(id_, signal);
}

ended_program started_program::wait() {
  go_on();
  int status = 0;
  (void)has_ended(0, status);
  return end_;
}

ended_program started_program::wait_after(int signal) {
  send(signal);
  return wait();
}

shown on_terminal(const std::string& script, const std::filesystem::path& folder, const answer& sent) {
  const std::vector<std::string> arguments = {"/bin/sh", "-c", script};
  const std::vector<char*> pointers = pointers_to(arguments);
  int terminal = -1;
  const pid_t child = started(::forkpty(&terminal, nullptr, nullptr, nullptr));
  if (child == 0) become(pointers, folder, false);
  shown seen;
  bool waits = sent.signal != 0;
  char bytes[4096];
  for (ssize_t done = 0; (done = ::read(terminal, bytes, sizeof bytes)) > 0;) {
    seen.text.append(bytes, static_cast<std::size_t>(done));
    if (waits && seen.text.find(sent.words) != std::string::npos) {
      ::kill(child, sent.signal);
      waits = false;
    }
  }
  ::close(terminal);
  ::waitpid(child, &seen.end.status, 0);
  return seen;
}

std::string left_on_terminal(const std::string& written) {
  std::string screen;
  std::size_t line = 0;  // where the last one begins
  std::size_t place = 0;
  for (std::size_t i = 0; i < written.size(); ++i) {
    if (written[i] == '\r') {
      place = line;
    } else if (written.compare(i, 3, "\x1B[K") == 0) {
      screen.resize(place);
      i += 2;
    } else if (written[i] == '\n') {
      screen += '\n';
      line = place = screen.size();
    } else {
      screen.replace(place++, 1, 1, written[i]);
    }
  }
  return screen;
}

full_pipe::full_pipe(const std::filesystem::path& name)
    : handle_(::mkfifo(name.c_str(), 0600) == 0 ? ::open(name.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC)
                                                : -1) {
  if (handle_ < 0) throw std::runtime_error("cannot make a pipe");
  const std::string some(4096, ' ');
  while (::write(handle_, some.data(), some.size()) > 0) continue;
}

full_pipe::~full_pipe() { ::close(handle_); }

}  // namespace ovtest
