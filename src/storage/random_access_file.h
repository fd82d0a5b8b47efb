// A whole file as mirrored slices: edited at any position, written back when it is closed.
#pragma once

#include <vector>

#include "storage/segment_file.h"

namespace ovf {

enum class random_access { create, open };

class random_access_file {
 public:
  /// `create` makes the file or empties it; `open` opens it, making it when missing. Throws file_error
  /// "cannot create file".
  random_access_file(wide_view name, random_access mode);

  std::size_t read(std::uint64_t position, std::span<std::byte> bytes);
  /// Answers the bytes written; fewer than asked for when a slice takes nothing more.
  std::size_t write(std::uint64_t position, std::span<const std::byte> bytes);
  std::uint64_t length() const noexcept { return length_; }

  /// Copies every changed slice into the file; false when something did not arrive.
  bool sync() noexcept;

 private:
  source_file source_;
  std::vector<_segmentFile> slices_;  // released before the source
  std::uint64_t length_ = 0;
};

}  // namespace ovf
