#include <fcntl.h>
#include <signal.h>  // NOLINT(modernize-deprecated-headers): sigaction is in this one alone
#include <unistd.h>

#include <cstdlib>

#include "console.h"
#include "encoding.h"

namespace command {
namespace {

volatile sig_atomic_t stop_signal = 0;

void remember_signal(int signal) { stop_signal = signal; }

constexpr int stop_signals[] = {SIGINT, SIGTERM, SIGHUP};
struct sigaction old_actions[3];
/// The first of those that are inside one another sets the actions, and the same one gives them back.
int guards = 0;

/// A standard stream that is closed would lend its number to the next file that is opened, and messages
/// would end up in a table. What stands in for it refuses to be read or written as one expects.
void fill_closed_streams() {
  for (int stream = 0; stream <= 2; ++stream) {
    if (::fcntl(stream, F_GETFD) == -1) (void)::open("/dev/null", stream == 0 ? O_WRONLY : O_RDONLY);
  }
}

}  // namespace

std::vector<std::string> start_console(int count, char** values) {
  fill_closed_streams();
  ::signal(SIGPIPE, SIG_IGN);
  ::signal(SIGXFSZ, SIG_IGN);
  return {values, values + count};
}

bool is_terminal(standard_stream stream) noexcept { return ::isatty(static_cast<int>(stream)) == 1; }

interrupt_guard::interrupt_guard() {
  if (guards++ > 0) return;
  for (std::size_t i = 0; i < std::size(stop_signals); ++i) {
    ::sigaction(stop_signals[i], nullptr, &old_actions[i]);
    if (old_actions[i].sa_handler == SIG_IGN) continue;
    struct sigaction action {};
    action.sa_handler = remember_signal;  // no SA_RESTART: a read that waits returns
    ::sigaction(stop_signals[i], &action, nullptr);
  }
}

interrupt_guard::~interrupt_guard() {
  if (--guards > 0) return;
  for (std::size_t i = 0; i < std::size(stop_signals); ++i) {
    ::sigaction(stop_signals[i], &old_actions[i], nullptr);
  }
}

bool is_stop_asked() noexcept { return stop_signal != 0; }

void end_as_interrupted() {
  const int signal = stop_signal != 0 ? stop_signal : SIGINT;
  ::signal(signal, SIG_DFL);
  ::raise(signal);
  std::_Exit(128 + signal);
}

bool has_ansi_place(char32_t character) noexcept { return in_windows_1252(character); }

}  // namespace command
