// One segment of a file in memory. A table holds two: one header page, and one segment of its records.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "base/file.h"
#include "storage/changed_words.h"

namespace ovf {

/// How much of a segment a caller needs.
struct segment_need {
  std::uint64_t required;   ///< bytes that a whole segment must deliver; what the error message names
  std::uint64_t usable;     ///< bytes that are enough for this caller when the file ends early
  std::uint64_t first = 0;  ///< where what this caller looks at begins
};

/// Holds the N bytes of one segment. With a null file every operation does nothing. Errors are thrown
/// with the messages of the page cache. Not copied; released (flushed, errors swallowed) on destruction.
template <std::size_t N>
class fileSegmentMap {
 public:
  static constexpr std::uint64_t none = ~std::uint64_t{0};

  /// `target` must outlive the map. Changes are written back only when `may_write`.
  explicit fileSegmentMap(file* target = nullptr, bool may_write = false);
  ~fileSegmentMap();
  fileSegmentMap(const fileSegmentMap&) = delete;
  fileSegmentMap& operator=(const fileSegmentMap&) = delete;

  /// Makes `segment` current: flushes the one before and reads, unless it is current already. `extent`
  /// is the number of bytes in use, from the segment's beginning, that a flush writes back, beginning at
  /// `write_start`; for the current segment it only grows. A jump from a segment farther away reads what the
  /// caller looks at, and the rest when more of the segment is wanted: rows here and there in a large file
  /// need no more.
  void load(std::uint64_t segment, segment_need need, std::uint64_t extent, std::uint64_t write_start);
  /// Makes a segment current whose bytes are zero in the file too, because its caller has just written them:
  /// flushes the one before and reads nothing. Otherwise as `load`.
  void begin_empty(std::uint64_t segment, std::uint64_t extent, std::uint64_t write_start);
  /// Writes back what has changed: the bytes in use where the whole segment was, else the changed parts in
  /// their places and nothing beside them, which others may have changed in the file meanwhile.
  void flush();
  /// Drops the segment with whatever was not flushed.
  void forget() noexcept;
  /// Forgets, and goes on with another file.
  void turn_to(file& target) noexcept;
  /// Says that the buffer was changed, all of it or the words that these bytes touch; no effect on a map that
  /// may not write.
  void mark_changed() noexcept;
  void mark_changed(std::size_t begin, std::size_t bytes) noexcept {
    // A row is mostly changed value by value.
    if (begin != marked_begin_ || bytes > marked_bytes_) mark_others_changed(begin, bytes);
  }

  /// Seeks to a position of the file, from whichever end is nearer. Returns the file's size.
  std::uint64_t seek(std::uint64_t position);

  std::byte* data() noexcept { return buffer_.get(); }
  std::uint64_t segment() const noexcept { return segment_; }
  std::uint64_t extent() const noexcept { return extent_; }
  bool valid() const noexcept { return valid_; }
  bool dirty() const noexcept { return dirty_; }
  /// Whether the file ended inside the segment, before the required bytes.
  bool ends_early() const noexcept { return valid_ && held_ < required_; }
  file* target() const noexcept { return file_; }

  /// A second map that is flushed when this one is released. Rows go to the file before the header that
  /// counts them by `header_pages::before_write` instead.
  fileSegmentMap* next = nullptr;

 private:
  void read(std::uint64_t segment, segment_need need, bool is_jump);
  void read_rest();
  /// Reads these bytes of the segment. Returns how many of its bytes the file has.
  std::uint64_t read_part(std::uint64_t segment, std::size_t begin, std::size_t end);
  void write_back(std::size_t begin, std::size_t end);
  void mark_others_changed(std::size_t begin, std::size_t bytes) noexcept;
  void forget_changes() noexcept;
  void release() noexcept;

  file* file_;
  bool may_write_;
  std::uint64_t segment_ = none;
  std::uint64_t extent_ = N;
  std::uint64_t write_start_ = 0;
  std::uint64_t held_ = 0;      ///< bytes of the segment that the file has
  std::uint64_t required_ = 0;  ///< bytes that it should have
  std::size_t read_begin_ = 0;  ///< of the segment's bytes that are in the buffer
  std::size_t read_end_ = N;
  std::size_t marked_begin_ = 0;  ///< what was marked last
  std::size_t marked_bytes_ = 0;
  bool valid_ = false;
  bool writable_ = false;
  bool dirty_ = false;
  bool all_changed_ = false;
  changed_words<N, N == 2048 ? 4 : 8> changed_;
  std::unique_ptr<std::byte[]> buffer_;
};

}  // namespace ovf
