#include "table/work_progress.h"

#include <algorithm>
#include <utility>

namespace ovf {
namespace {

constexpr std::uint64_t steps_per_look = 256;
constexpr std::uint64_t steps_per_call = 1 << 15;
constexpr std::chrono::milliseconds time_per_call{50};

}  // namespace

work_progress::work_progress(ovfile::pointer<IOvProgress> sink, std::uint64_t total)
    : sink_(std::move(sink)), total_(total) {
  if (!sink_) return;
  next_look_ = steps_per_look;
  tell();
}

void work_progress::look() {
  next_look_ = done_ + steps_per_look;
  if (done_ - told_ >= steps_per_call || clock::now() >= due_) tell();
}

void work_progress::finish() {
  if (!sink_) return;
  done_ = std::max(done_, total_);  // a total that nobody knew is 0
  tell();
}

void work_progress::tell() {
  told_ = done_;
  const HRESULT answer = sink_->Progress(static_cast<LONGLONG>(done_), static_cast<LONGLONG>(total_));
  if (answer != S_OK) throw work_stopped();
  due_ = clock::now() + time_per_call;
}

}  // namespace ovf
