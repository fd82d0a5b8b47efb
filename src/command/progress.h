// A bar on standard error for work that lasts: shown from the second second on, only on a terminal, and
// wiped away at the end.
#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>

namespace command {

class progress {
 public:
  /// `wanted` false keeps it silent (where output flows all the time it would only flicker).
  explicit progress(std::string title, bool wanted = true);
  ~progress() { wipe(); }
  progress(const progress&) = delete;
  progress& operator=(const progress&) = delete;

  /// Cheap enough for every row. A `total` of 0 is unknown: then only the bar's title stands there.
  void at(std::uint64_t done, std::uint64_t total) {
    if (++calls_ % calls_per_look == 0) look(done, total);
  }
  /// The same for steps that are large, or of which there may be few.
  void look(std::uint64_t done, std::uint64_t total);
  /// Takes away the bar that stands on the terminal, if any: for who is about to write there. Work that goes
  /// on draws it again.
  static void wipe();
  /// The same for where another thread does that work: it does not draw while what this returns lives.
  [[nodiscard]] static std::unique_lock<std::mutex> wiped();

 private:
  static constexpr unsigned calls_per_look = 1024;

  std::string title_;
  bool shown_;
  unsigned calls_ = 0;
  std::chrono::steady_clock::time_point next_;
};

}  // namespace command
