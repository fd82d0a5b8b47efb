#include "storage/segment_map.h"

#include <algorithm>
#include <cstring>

#include "platform/debug_channel.h"
#include "storage/file_error.h"

namespace ovf {
namespace {

constexpr wide_view page_read_failed = OLESTR("OvFile Error: cache failed to read file. (%x: %s)");
constexpr wide_view read_short =
    OLESTR("OvFile Error: cache failed to read an entire page. (%d bytes read instead of %d)");
constexpr wide_view page_write_failed =
    OLESTR("OvFile Error: doFlush failed to write an entire page. (%x: %s)");

[[noreturn]] void fail_short_read(std::uint64_t held, std::uint64_t required) {
  const wide message =
      wide_format(read_short).arg(static_cast<long long>(held)).arg(static_cast<long long>(required)).text();
  debug_output(message);
  throw file_error(message);
}

}  // namespace

template <std::size_t N>
fileSegmentMap<N>::fileSegmentMap(file* target, bool may_write)
    : file_(target), may_write_(may_write), buffer_(std::make_unique<std::byte[]>(N)) {}

template <std::size_t N>
fileSegmentMap<N>::~fileSegmentMap() {
  release();
}

template <std::size_t N>
void fileSegmentMap<N>::load(std::uint64_t segment, segment_need need, std::uint64_t extent,
                             std::uint64_t write_start) {
  if (file_ == nullptr) return;
  if (segment == none) {
    extent_ = extent;
    write_start_ = write_start;
    return;
  }
  if (valid_ && segment == segment_) {
    if (ends_early() && held_ < need.usable) fail_short_read(held_, required_);
    if (need.first < read_begin_ || need.usable > read_end_) read_rest();
    extent_ = std::max(extent_, extent);
    return;
  }
  const bool is_jump = valid_ && std::max(segment, segment_) - std::min(segment, segment_) > 1;
  flush();
  read(segment, need, is_jump);
  extent_ = extent;
  write_start_ = write_start;
}

template <std::size_t N>
void fileSegmentMap<N>::begin_empty(std::uint64_t segment, std::uint64_t extent, std::uint64_t write_start) {
  if (file_ == nullptr) return;
  flush();
  std::memset(buffer_.get(), 0, N);
  segment_ = segment;
  extent_ = extent;
  write_start_ = write_start;
  held_ = N;
  required_ = N;
  read_begin_ = 0;
  read_end_ = N;
  valid_ = true;
}

template <std::size_t N>
void fileSegmentMap<N>::read(std::uint64_t segment, segment_need need, bool is_jump) {
  forget();
  const std::size_t begin = is_jump ? static_cast<std::size_t>(need.first) : 0;
  const std::size_t end = is_jump ? static_cast<std::size_t>(need.usable) : N;
  const std::uint64_t held = read_part(segment, begin, end);
  if (held < std::min(need.required, need.usable)) fail_short_read(held, need.required);
  segment_ = segment;
  held_ = held;
  required_ = need.required;
  read_begin_ = begin;
  read_end_ = end;
  valid_ = true;
}

template <std::size_t N>
void fileSegmentMap<N>::read_rest() {
  if (read_begin_ > 0) (void)read_part(segment_, 0, read_begin_);
  if (read_end_ < N) held_ = read_part(segment_, read_end_, N);
  read_begin_ = 0;
  read_end_ = N;
}

template <std::size_t N>
std::uint64_t fileSegmentMap<N>::read_part(std::uint64_t segment, std::size_t begin, std::size_t end) {
  const std::uint64_t base = segment * N;
  const std::uint64_t size = seek(base + begin);
  std::size_t done = 0;
  if (!file_->read({buffer_.get() + begin, end - begin}, done)) fail_with_system_error(page_read_failed);
  std::memset(buffer_.get() + begin + done, 0, end - begin - done);
  const std::uint64_t there = std::min<std::uint64_t>(size - std::min(size, base), N);
  if (done == end - begin) return std::max<std::uint64_t>(there, end);
  return done > 0 ? begin + done : std::min<std::uint64_t>(there, begin);
}

template <std::size_t N>
void fileSegmentMap<N>::flush() {
  if (file_ == nullptr || !valid_ || !writable_ || !dirty_) return;
  if (all_changed_) {
    write_back(std::max(static_cast<std::size_t>(write_start_), read_begin_),
               std::min(static_cast<std::size_t>(extent_), read_end_));
  } else {
    changed_.each_run([this](std::size_t begin, std::size_t end) { write_back(begin, end); });
  }
  forget_changes();
}

template <std::size_t N>
void fileSegmentMap<N>::write_back(std::size_t begin, std::size_t end) {
  seek(segment_ * N + begin);
  const std::size_t count = end > begin ? end - begin : 0;
  std::size_t done = 0;
  if (!file_->write({buffer_.get() + begin, count}, done) || done != count) {
    fail_with_system_error(page_write_failed);
  }
}

template <std::size_t N>
void fileSegmentMap<N>::forget_changes() noexcept {
  writable_ = false;
  dirty_ = false;
  all_changed_ = false;
  marked_bytes_ = 0;
  changed_.clear();
}

template <std::size_t N>
std::uint64_t fileSegmentMap<N>::seek(std::uint64_t position) {
  std::uint64_t size = 0;
  if (!file_->size(size)) throw file_error(OLESTR("cannot retrieve file size"));
  const auto target = static_cast<std::int64_t>(position);
  const bool from_end = position > size / 2 && position <= size;
  // Where another program has made the file longer or shorter since its size was asked for, its end is
  // elsewhere.
  std::uint64_t reached = 0;
  const bool moved = (from_end && file_->seek(target - static_cast<std::int64_t>(size), seek_origin::end) &&
                      file_->position(reached) && reached == position) ||
                     file_->seek(target, seek_origin::begin);
  if (!moved) throw file_error(OLESTR("cannot move to page in file"));
  return size;
}

template <std::size_t N>
void fileSegmentMap<N>::forget() noexcept {
  segment_ = none;
  valid_ = false;
  forget_changes();
}

template <std::size_t N>
void fileSegmentMap<N>::turn_to(file& target) noexcept {
  forget();
  file_ = &target;
}

template <std::size_t N>
void fileSegmentMap<N>::mark_changed() noexcept {
  if (!may_write_) return;
  writable_ = true;
  dirty_ = true;
  all_changed_ = true;
}

template <std::size_t N>
void fileSegmentMap<N>::mark_others_changed(std::size_t begin, std::size_t bytes) noexcept {
  if (!may_write_) return;
  marked_begin_ = begin;
  marked_bytes_ = bytes;
  writable_ = true;
  dirty_ = true;
  changed_.add(begin, bytes);
}

template <std::size_t N>
void fileSegmentMap<N>::release() noexcept {
  // A destructor has nobody to tell of a failure; whoever wants to know flushes before.
  const auto flush_quietly = [](fileSegmentMap& map) noexcept {
    try {
      map.flush();
    } catch (...) {
    }
  };
  flush_quietly(*this);
  if (next != nullptr) flush_quietly(*next);
}

template class fileSegmentMap<2048>;
template class fileSegmentMap<4096>;
template class fileSegmentMap<409600>;

}  // namespace ovf
