// The command's ties to the terminal and the session that differ between systems.
#pragma once

#include <string>
#include <vector>

#include "failure.h"

namespace command {

/// Standard streams that may be a terminal.
enum class standard_stream { input, output, error };

/// Sets the process up: a broken pipe and a file that may not grow become errors of the write, a
/// terminal shows UTF-8. Returns the arguments as UTF-8, the program's name first.
std::vector<std::string> start_console(int count, char** values);

bool is_terminal(standard_stream stream) noexcept;

/// While one lives, a request to stop (SIGINT, SIGTERM, SIGHUP; Ctrl+C, closing the console) only sets a
/// flag, so that files can be taken away first. Signals that are ignored stay ignored.
class interrupt_guard {
 public:
  interrupt_guard();
  ~interrupt_guard();
  interrupt_guard(const interrupt_guard&) = delete;
  interrupt_guard& operator=(const interrupt_guard&) = delete;
};

/// Whether a stop was asked for while there was a guard.
bool is_stop_asked() noexcept;

/// Throws `interrupted` when a stop was asked for.
inline void throw_if_interrupted() {
  if (is_stop_asked()) throw interrupted();
}

/// Ends the process the way the signal would have done. For after everything is cleaned up.
[[noreturn]] void end_as_interrupted();

/// Whether the library can store the character: in the ANSI code page it uses, without a best fit.
bool has_ansi_place(char32_t character) noexcept;

}  // namespace command
