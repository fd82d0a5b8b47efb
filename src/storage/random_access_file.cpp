#include "storage/random_access_file.h"

#include <algorithm>

#include "storage/file_error.h"

namespace ovf {
namespace {

std::unique_ptr<file> opened(wide_view name, random_access mode) {
  auto made =
      files().open(name, mode == random_access::create ? open_mode::make_new : open_mode::edit_or_make);
  if (made == nullptr && mode == random_access::create && already_exists(last_system_error())) {
    made = files().open(name, open_mode::truncate);
  }
  if (made == nullptr) throw file_error(OLESTR("cannot create file"));
  return made;
}

}  // namespace

random_access_file::random_access_file(wide_view name, random_access mode) : source_(opened(name, mode)) {
  // A file just made or emptied has nothing to mirror.
  if (mode == random_access::create) return;
  if (!source_.size(length_)) throw file_error(OLESTR("cannot create file"));
  for (std::uint64_t base = 0; base < length_; base += _segmentFile::slice_bytes) {
    slices_.emplace_back(source_, base);
  }
}

std::size_t random_access_file::read(std::uint64_t position, std::span<std::byte> bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    const std::uint64_t at = position + done;
    const std::uint64_t index = at / _segmentFile::slice_bytes;
    if (index >= slices_.size()) break;
    const std::size_t room = _segmentFile::slice_bytes - at % _segmentFile::slice_bytes;
    const auto part = bytes.subspan(done, std::min<std::size_t>(room, bytes.size() - done));
    const std::size_t now = slices_[static_cast<std::size_t>(index)].readData(at, part);
    if (now == 0) break;
    done += now;
  }
  return done;
}

std::size_t random_access_file::write(std::uint64_t position, std::span<const std::byte> bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    const std::uint64_t at = position + done;
    const std::uint64_t index = at / _segmentFile::slice_bytes;
    if (index > slices_.size()) break;
    if (index == slices_.size()) slices_.emplace_back(source_, index * _segmentFile::slice_bytes);
    const std::size_t now = slices_[static_cast<std::size_t>(index)].writeData(at, bytes.subspan(done));
    if (now == 0) break;
    done += now;
  }
  if (done > 0) length_ = std::max(length_, position + done);
  return done;
}

bool random_access_file::sync() noexcept {
  bool arrived = true;
  for (_segmentFile& slice : slices_) arrived = slice.sync() && arrived;
  return arrived;
}

}  // namespace ovf
