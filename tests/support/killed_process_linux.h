// Work in a process of its own that ends at a call of the file system, as when somebody kills it.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include "support/failing_files.h"

namespace ovtest {

/// When the process ends.
enum class moment {
  before_the_call,
  in_the_call  ///< after half of its bytes, if it writes
};

// How it ends.
inline constexpr int killed = 77;
inline constexpr int finished = 0;
inline constexpr int refused = 1;

/// Runs `work`, which answers whether it went well, and returns how its process ended; -1 for any other end.
inline int in_own_process(const std::function<bool()>& work) {
  const pid_t child = ::fork();
  if (child == 0) {
    try {
      ::_exit(work() ? finished : refused);
    } catch (...) {
      ::_exit(refused);
    }
  }
  int status = 0;
  if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status)) return -1;
  return WEXITSTATUS(status);
}

/// The process ends at the nth call from now on; until then `otherwise` decides.
inline void end_at(failing_files& disk, int n, moment when,
                   std::function<fate(call, const ovf::wide&)> otherwise = {}) {
  const int last = when == moment::before_the_call ? n : n + 1;
  disk.decide = [=, calls = 0](call kind, const ovf::wide& name) mutable {
    if (++calls == last) ::_exit(killed);
    if (calls == n && kind == call::write) return fate::falls_short;
    return otherwise ? otherwise(kind, name) : fate::works;
  };
}

}  // namespace ovtest
