#include "progress.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "console.h"
#include "environment.h"
#include "words.h"

namespace command {
namespace {

/// How long a bar waits before it shows: $OVFILE_PROGRESS in seconds, else one.
std::chrono::milliseconds patience() {
  constexpr double day = 86400;
  const std::string set = environment_value("OVFILE_PROGRESS");
  char* end = nullptr;
  const double seconds = std::strtod(set.c_str(), &end);
  const bool is_number = end != set.c_str() && seconds >= 0 && seconds <= day;
  return std::chrono::milliseconds(is_number ? static_cast<long long>(seconds * 1000) : 1000);
}

/// The work of a command is all that it does, in however many parts.
const auto program_start = std::chrono::steady_clock::now();
constexpr auto between_looks = std::chrono::milliseconds(100);
constexpr std::size_t bar_width = 30;

/// For the terminal, and for whether its last line is a bar, whosever it is.
std::mutex terminal;
bool is_drawn = false;

}  // namespace

progress::progress(std::string title, bool wanted)
    : title_(std::move(title)),
      shown_(wanted && is_terminal(standard_stream::error)),
      next_(program_start + patience()) {}

void progress::wipe() { (void)wiped(); }

std::unique_lock<std::mutex> progress::wiped() {
  std::unique_lock held(terminal);
  if (std::exchange(is_drawn, false)) std::fputs("\r\x1B[K", stderr);
  return held;
}

void progress::look(std::uint64_t done, std::uint64_t total) {
  if (!shown_) return;
  const auto now = std::chrono::steady_clock::now();
  if (now < next_) return;
  // Who writes there may wait long for the terminal.
  const std::unique_lock held(terminal, std::try_to_lock);
  if (!held) return;
  next_ = now + std::min(between_looks, patience());
  const double share =
      total == 0 ? 0.0 : std::min(1.0, static_cast<double>(done) / static_cast<double>(total));
  const auto full = static_cast<std::size_t>(share * static_cast<double>(bar_width));
  const std::string line = total == 0
                               ? fmt::format("\r{} …\x1B[K", title_)
                               : fmt::format("\r{} [{}{}] {:3.0f} %\x1B[K", title_, std::string(full, '#'),
                                             std::string(bar_width - full, ' '), share * 100);
  is_drawn = true;
  std::fputs(line.c_str(), stderr);
  std::fflush(stderr);
}

}  // namespace command
