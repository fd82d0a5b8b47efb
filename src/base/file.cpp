#include "base/file.h"

#include <atomic>
#include <chrono>
#include <string>

namespace ovf {
namespace {

file_system* in_use = nullptr;
std::atomic<std::uint64_t> name_counter{0};

bool is_separator(OLECHAR character) noexcept {
  return character == OLESTR('\\') || character == OLESTR('/');
}

}  // namespace

file_system& files() noexcept { return in_use != nullptr ? *in_use : system_files(); }

file_system* use_files(file_system* other) noexcept {
  file_system* before = in_use;
  in_use = other;
  return before;
}

wide temporary_name(wide_view folder, wide_view prefix) {
  for (;;) {
    // Time and a counter keep names of other processes and of this one apart; whoever makes the file
    // still makes it exclusively.
    const auto ticks =
        static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    const std::uint64_t number = (ticks << 8) ^ ++name_counter;
    wide name(folder);
    name += prefix;
    for (int shift = 36; shift >= 0; shift -= 4) {
      name += static_cast<OLECHAR>(OLESTR("0123456789abcdef")[(number >> shift) & 0xF]);
    }
    name += OLESTR(".tmp");
    if (files().kind(name) == file_kind::missing) return name;
  }
}

wide_view folder_of(wide_view path) noexcept {
  std::size_t length = path.size();
  while (length > 0 && !is_separator(path[length - 1])) --length;
  return path.substr(0, length);
}

}  // namespace ovf
