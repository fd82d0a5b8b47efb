#include "storage/file_error.h"

#include <limits>

#include "platform/debug_channel.h"

namespace ovf {

void fail_not_a_table() { throw MyExceptionClass(OLESTR("Not a valid orvexa table")); }

void fail_unrecognised() { throw MyExceptionClass(OLESTR("Unrecognised file type.")); }

void fail_told(wide_view message) {
  debug_output(message);
  throw file_error(message);
}

wide with_system_error(wide_view pattern) {
  const system_code code = last_system_error();
  return wide_format(pattern).arg(static_cast<long long>(code)).arg(system_message(code)).text();
}

void fail_with_system_error(wide_view pattern) { fail_told(with_system_error(pattern)); }

void note_system_error(wide_view pattern) noexcept try {
  debug_output(with_system_error(pattern));
} catch (...) {
  // Nobody is left to tell when even the message has no room.
}

std::int32_t narrowed(std::uint64_t count, const char* text) {
  if (count > static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max())) {
    throw std::out_of_range(text);
  }
  return static_cast<std::int32_t>(count);
}

}  // namespace ovf
