#include "base/file_copy.h"

#include <algorithm>
#include <vector>

namespace ovf {

bool write_whole(file& to, std::span<const std::byte> bytes) noexcept {
  std::size_t done = 0;
  return to.write(bytes, done) && done == bytes.size();
}

bool copy_from(file& from, std::uint64_t position, file& to) {
  constexpr std::size_t chunk_bytes = 1 << 20;
  std::uint64_t size = 0;
  if (!from.size(size) || !from.seek(static_cast<std::int64_t>(position), seek_origin::begin)) return false;
  std::uint64_t left = size > position ? size - position : 0;
  std::vector<std::byte> chunk(static_cast<std::size_t>(std::min<std::uint64_t>(left, chunk_bytes)));
  while (left > 0) {
    const auto part =
        std::span(chunk).first(static_cast<std::size_t>(std::min<std::uint64_t>(left, chunk_bytes)));
    std::size_t done = 0;
    // Nobody shortens the file meanwhile: fewer bytes than it has are a failure, not its end.
    if (!from.read(part, done) || done != part.size() || !write_whole(to, part)) return false;
    left -= done;
  }
  return true;
}

}  // namespace ovf
