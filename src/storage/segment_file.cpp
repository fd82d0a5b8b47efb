#include "storage/segment_file.h"

#include <algorithm>
#include <vector>

#include "storage/file_error.h"

namespace ovf {
namespace {

constexpr wide_view cannot_create = OLESTR("cannot create temp file for segment");
constexpr wide_view copy_failed =
    OLESTR("OvFile Error: _segmentFile failed to write an entire page. (%x: %s)");
constexpr wide_view slice_read_failed = OLESTR("OvFile Error: _segmentFile::readData read. (%x: %s)");
constexpr wide_view slice_write_failed =
    OLESTR("OvFile Error: _segmentFile::writeData failed to write an entire page. (%x: %s)");
constexpr wide_view pure_failed = OLESTR("OvFile Error: readPure failed  (%x: %s)");
constexpr wide_view sync_failed = OLESTR("OvFile Error: segmentFile::sync failed read. (%x: %s)");
constexpr wide_view release_failed = OLESTR("OvFile Error: ~segmentfile failed read. (%x: %s)");
constexpr wide_view prefix = OLESTR("RAF");

bool read_at(file& from, std::uint64_t position, std::span<std::byte> bytes, std::size_t& done) noexcept {
  done = 0;
  return from.seek(static_cast<std::int64_t>(position), seek_origin::begin) && from.read(bytes, done);
}

bool write_at(file& to, std::uint64_t position, std::span<const std::byte> bytes,
              std::size_t& done) noexcept {
  done = 0;
  return to.seek(static_cast<std::int64_t>(position), seek_origin::begin) && to.write(bytes, done);
}

}  // namespace

bool source_file::move_to(std::uint64_t position) noexcept {
  if (position == position_) return true;
  const auto distance = static_cast<std::int64_t>(position) - static_cast<std::int64_t>(position_);
  if (!file_->seek(distance, seek_origin::current)) return false;
  position_ = position;
  return true;
}

std::size_t source_file::read_pure(std::uint64_t position, std::span<std::byte> bytes) noexcept {
  std::size_t done = 0;
  if (!move_to(position) || !file_->read(bytes, done)) {
    note_system_error(pure_failed);
    return 0;
  }
  position_ += done;
  return done;
}

std::size_t source_file::write_pure(std::uint64_t position, std::span<const std::byte> bytes) noexcept {
  std::size_t done = 0;
  if (!move_to(position)) return 0;
  (void)file_->write(bytes, done);
  position_ += done;
  return done;
}

struct _segmentFile::state {
  source_file& source;
  std::uint64_t base = 0;
  std::int64_t size = 0;
  bool dirty = false;
  wide name;
  std::unique_ptr<file> temporary;

  state(source_file& from, std::uint64_t begin) : source(from), base(begin) {}
  state(const state&) = delete;
  state& operator=(const state&) = delete;
  ~state() {
    if (temporary == nullptr) return;
    if (dirty) copy_back(release_failed);
    temporary.reset();
    files().remove(name);
  }

  bool holds(std::uint64_t position) const noexcept {
    return position >= base && position - base <= slice_bytes - 1;
  }

  /// Without memory of its own: what was written must get into the file when memory has run out, too.
  bool copy_back(wide_view message) noexcept {
    std::byte buffer[1 << 14];
    for (std::uint64_t at = 0;;) {
      std::size_t count = 0;
      if (!read_at(*temporary, at, buffer, count)) {
        note_system_error(message);
        return false;
      }
      if (count == 0) return true;
      if (source.write_pure(base + at, std::span(buffer).first(count)) != count) return false;
      at += count;
    }
  }

  void copy_in() {
    std::vector<std::byte> buffer(slice_bytes);
    std::size_t count = source.read_pure(base, buffer);
    while (count > 0 && size < static_cast<std::int64_t>(slice_bytes)) {
      std::size_t done = 0;
      if (!temporary->write(std::span(buffer).first(count), done) || done != count) {
        note_system_error(copy_failed);
      }
      size += static_cast<std::int64_t>(count);
      const std::size_t room = slice_bytes - static_cast<std::size_t>(size);
      count = source.read_pure(base + static_cast<std::uint64_t>(size), std::span(buffer).first(room));
    }
  }
};

_segmentFile::_segmentFile(source_file& source, std::uint64_t base)
    : state_(std::make_shared<state>(source, base)) {
  state_->name = ovf::temporary_name(files().temporary_folder(), prefix);
  state_->temporary = files().open(state_->name, open_mode::scratch);
  if (state_->temporary == nullptr) fail_told(cannot_create);
  state_->copy_in();
}

std::size_t _segmentFile::readData(std::uint64_t position, std::span<std::byte> bytes) noexcept {
  if (!state_->holds(position)) return 0;
  std::size_t done = 0;
  if (!read_at(*state_->temporary, position - state_->base, bytes, done)) {
    note_system_error(slice_read_failed);
    return 0;
  }
  return done;
}

std::size_t _segmentFile::writeData(std::uint64_t position, std::span<const std::byte> bytes) noexcept {
  if (!state_->holds(position)) return 0;
  const auto offset = static_cast<std::size_t>(position - state_->base);
  const auto part = bytes.first(std::min(bytes.size(), slice_bytes - offset));
  std::size_t done = 0;
  if (!write_at(*state_->temporary, offset, part, done) || done != part.size()) {
    note_system_error(slice_write_failed);
  }
  if (done == 0) return 0;
  state_->size = std::max(state_->size, static_cast<std::int64_t>(offset + done));
  state_->dirty = true;
  return done;
}

bool _segmentFile::sync() noexcept {
  if (!state_->dirty) return true;
  if (!state_->copy_back(sync_failed)) return false;
  state_->dirty = false;
  return true;
}

std::uint64_t _segmentFile::base() const noexcept { return state_->base; }
std::int64_t _segmentFile::size() const noexcept { return state_->size; }
bool _segmentFile::dirty() const noexcept { return state_->dirty; }
std::uint32_t _segmentFile::references() const noexcept {
  return static_cast<std::uint32_t>(state_.use_count());
}
const wide& _segmentFile::temporary_name() const noexcept { return state_->name; }

}  // namespace ovf
