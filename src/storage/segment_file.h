// Editing a file at random positions through temporary copies: slices of 256 KiB are mirrored in
// temporary files, edited there, and copied back at the end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "base/file.h"

namespace ovf {

/// An open file that knows its own position and seeks only by the difference from it.
class source_file {
 public:
  explicit source_file(std::unique_ptr<file> opened) : file_(std::move(opened)) {}

  /// Reads at a position; 0 when nothing can be read there, with a failure noted on the debug channel.
  std::size_t read_pure(std::uint64_t position, std::span<std::byte> bytes) noexcept;
  /// Writes at a position and answers how much was written.
  std::size_t write_pure(std::uint64_t position, std::span<const std::byte> bytes) noexcept;
  bool size(std::uint64_t& bytes) noexcept { return file_->size(bytes); }

 private:
  bool move_to(std::uint64_t position) noexcept;

  std::unique_ptr<file> file_;
  std::uint64_t position_ = 0;
};

/// One mirrored slice. Copies share their state; the last one to go copies the slice back when it has
/// changed, and deletes the temporary file. Positions are absolute in the source.
class _segmentFile {
 public:
  static constexpr std::size_t slice_bytes = 262144;

  /// Copies the source from `base` on into a new temporary file. Throws file_error "cannot create temp
  /// file for segment". The source must outlive every copy.
  _segmentFile(source_file& source, std::uint64_t base);

  /// Answers the bytes read; 0 for a position outside the slice.
  std::size_t readData(std::uint64_t position, std::span<std::byte> bytes) noexcept;
  /// Answers the bytes written; 0 outside the slice, fewer than asked for when the slice ends.
  std::size_t writeData(std::uint64_t position, std::span<const std::byte> bytes) noexcept;
  /// Copies a changed slice back to the source. False when not all of it arrived there: the slice then
  /// stays changed.
  bool sync() noexcept;

  std::uint64_t base() const noexcept;
  /// Highest offset within the slice written so far.
  std::int64_t size() const noexcept;
  bool dirty() const noexcept;
  /// Live copies.
  std::uint32_t references() const noexcept;
  /// Full path of the temporary file.
  const wide& temporary_name() const noexcept;

 private:
  struct state;
  std::shared_ptr<state> state_;
};

}  // namespace ovf
