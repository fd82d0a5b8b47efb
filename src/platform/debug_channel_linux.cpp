#include <unistd.h>

#include <cstdlib>

#include "platform/debug_channel.h"

namespace ovf {

namespace {

/// Messages hold names and texts of files, and a control character among them would reach a terminal.
wide for_terminal(wide_view message) {
  wide shown;
  for (const OLECHAR c : message) {
    const bool is_control = c < 0x20 || (c >= 0x7F && c < 0xA0);
    if (c == u'\r') continue;  // lines end with a line feed here
    shown += is_control && c != u'\t' && c != u'\n' ? u'.' : c;
  }
  return shown;
}

}  // namespace

bool is_system_debug_output_on() noexcept { return ::secure_getenv("OVFILE_DEBUG") != nullptr; }

void write_system_debug_output(wide_view message) {
  if (!is_system_debug_output_on()) return;
  std::string line = utf8_from_wide(for_terminal(message));
  if (line.empty() || line.back() != '\n') line.push_back('\n');
  std::string_view rest = line;
  while (!rest.empty()) {
    const ssize_t done = ::write(STDERR_FILENO, rest.data(), rest.size());
    if (done <= 0) return;
    rest.remove_prefix(static_cast<std::size_t>(done));
  }
}

}  // namespace ovf
