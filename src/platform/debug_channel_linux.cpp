#include <unistd.h>

#include <cstdlib>

#include "platform/debug_channel.h"

namespace ovf {

bool is_system_debug_output_on() noexcept { return ::secure_getenv("OVFILE_DEBUG") != nullptr; }

void write_system_debug_output(wide_view message) {
  if (!is_system_debug_output_on()) return;
  std::string line = utf8_from_wide(message);
  if (line.empty() || line.back() != '\n') line.push_back('\n');
  std::string_view rest = line;
  while (!rest.empty()) {
    const ssize_t done = ::write(STDERR_FILENO, rest.data(), rest.size());
    if (done <= 0) return;
    rest.remove_prefix(static_cast<std::size_t>(done));
  }
}

}  // namespace ovf
