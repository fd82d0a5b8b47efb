// How far a long call has come, told to the host as it goes.
#pragma once

#include <chrono>
#include <cstdint>
#include <limits>

#include "ovfile/progress.h"
#include "ovfile/smart.h"

namespace ovf {

/// The host has stopped the call.
struct work_stopped {};

/// Counts the steps of one call. The host hears of its beginning, of its end, and in between many times a
/// second; without a sink a step costs an addition. Everything but the destructor throws work_stopped.
class work_progress {
 public:
  /// For work that nobody asks about.
  work_progress() noexcept = default;
  /// `total` is 0 when nobody knows it.
  work_progress(ovfile::pointer<IOvProgress> sink, std::uint64_t total);

  void step(std::uint64_t steps = 1) {
    done_ += steps;
    if (done_ >= next_look_) look();
  }
  /// All steps are done, and what they were for can still be given up.
  void finish();

 private:
  using clock = std::chrono::steady_clock;

  void look();
  void tell();

  ovfile::pointer<IOvProgress> sink_;  ///< own reference: the host may take its sink back meanwhile
  std::uint64_t total_ = 0;
  std::uint64_t done_ = 0;
  std::uint64_t told_ = 0;
  std::uint64_t next_look_ = std::numeric_limits<std::uint64_t>::max();
  clock::time_point due_;
};

}  // namespace ovf
