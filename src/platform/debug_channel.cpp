#include "platform/debug_channel.h"

#include <mutex>

#include "base/system_error.h"

namespace ovf {

namespace {

struct listening {
  std::mutex mutex;
  std::function<void(wide_view)> listener;
};

listening& current() {
  static listening state;
  return state;
}

}  // namespace

void debug_output(wide_view message) noexcept {
  // A message is often written between a failure and the report of its reason.
  const system_code reason = last_system_error();
  try {
    std::function<void(wide_view)> listener;
    {
      const std::lock_guard lock(current().mutex);
      listener = current().listener;
    }
    if (listener) {
      listener(message);
    } else {
      write_system_debug_output(message);
    }
  } catch (...) {
    // Debug output is not worth a failure.
  }
  set_last_system_error(reason);
}

bool is_debug_output_heard() noexcept {
  try {
    const std::lock_guard lock(current().mutex);
    return current().listener != nullptr || is_system_debug_output_on();
  } catch (...) {
    return false;
  }
}

void listen_to_debug_output(std::function<void(wide_view)> listener) {
  const std::lock_guard lock(current().mutex);
  current().listener = std::move(listener);
}

}  // namespace ovf
