// A file system in memory, empty at first. Names are taken as they are; a file lives as long as its name
// or somebody who has it open.
#pragma once

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <vector>

#include "base/file.h"
#include "base/system_error.h"

namespace ovfuzz {

using content = std::vector<std::byte>;
using shared_content = std::shared_ptr<content>;

/// No file grows beyond this; the writer is told that the disk is full.
inline constexpr std::uint64_t most_bytes = std::uint64_t{1} << 24;
inline constexpr ovf::system_code not_there = 2;
inline constexpr ovf::system_code failed = 5;

inline bool fail(ovf::system_code code) noexcept {
  ovf::set_last_system_error(code);
  return false;
}

class memory_file final : public ovf::file {
 public:
  memory_file(shared_content bytes, bool writable) : bytes_(std::move(bytes)), writable_(writable) {}

  bool size(std::uint64_t& bytes) noexcept override {
    bytes = bytes_->size();
    return true;
  }
  bool seek(std::int64_t distance, ovf::seek_origin origin) noexcept override {
    const std::uint64_t base = origin == ovf::seek_origin::begin     ? 0
                               : origin == ovf::seek_origin::current ? position_
                                                                     : bytes_->size();
    std::int64_t target = 0;
    if (__builtin_add_overflow(static_cast<std::int64_t>(base), distance, &target) || target < 0) {
      return fail(failed);
    }
    position_ = static_cast<std::uint64_t>(target);
    return true;
  }
  bool stamp(ovf::file_stamp& found) noexcept override {
    found = {};
    return true;
  }
  bool position(std::uint64_t& bytes) noexcept override {
    bytes = position_;
    return true;
  }
  bool read(std::span<std::byte> bytes, std::size_t& done) noexcept override {
    const std::uint64_t left = bytes_->size() - std::min<std::uint64_t>(position_, bytes_->size());
    done = static_cast<std::size_t>(std::min<std::uint64_t>(left, bytes.size()));
    if (done != 0) std::memcpy(bytes.data(), bytes_->data() + position_, done);
    position_ += done;
    return true;
  }
  bool write(std::span<const std::byte> bytes, std::size_t& done) noexcept override {
    done = 0;
    if (!writable_ || position_ > most_bytes || bytes.size() > most_bytes - position_) return fail(failed);
    if (position_ + bytes.size() > bytes_->size()) bytes_->resize(position_ + bytes.size());
    if (!bytes.empty()) std::memcpy(bytes_->data() + position_, bytes.data(), bytes.size());
    done = bytes.size();
    position_ += done;
    return true;
  }
  bool set_end() noexcept override {
    if (!writable_ || position_ > most_bytes) return fail(failed);
    bytes_->resize(position_);
    return true;
  }
  bool sync() noexcept override { return true; }
  bool claim_growth() noexcept override { return true; }
  void give_back_growth() noexcept override {}

 private:
  shared_content bytes_;
  std::uint64_t position_ = 0;
  bool writable_;
};

/// In use as long as it lives.
class memory_files final : public ovf::file_system {
 public:
  memory_files() : before_(ovf::use_files(this)) {}
  memory_files(const memory_files&) = delete;
  memory_files& operator=(const memory_files&) = delete;
  ~memory_files() override { ovf::use_files(before_); }

  void put(ovf::wide_view name, content bytes) {
    files_[ovf::wide(name)] = std::make_shared<content>(std::move(bytes));
  }
  std::size_t count() const { return files_.size(); }
  /// What a file that is there holds.
  const content& at(ovf::wide_view name) const { return *files_.at(ovf::wide(name)); }

  std::unique_ptr<ovf::file> open(ovf::wide_view name, ovf::open_mode mode) noexcept override {
    using enum ovf::open_mode;
    const auto found = files_.find(ovf::wide(name));
    const bool is_there = found != files_.end();
    const bool must_be_there = mode == read || mode == look || mode == edit || mode == truncate;
    const bool makes = !must_be_there && mode != edit_or_make;
    if (must_be_there != is_there && (must_be_there || makes)) {
      fail(must_be_there ? not_there : failed);
      return nullptr;
    }
    shared_content& bytes = files_[ovf::wide(name)];
    if (bytes == nullptr) bytes = std::make_shared<content>();
    if (mode == truncate) bytes->clear();
    return std::make_unique<memory_file>(bytes, mode != read && mode != look);
  }
  ovf::file_kind kind(ovf::wide_view name) noexcept override {
    return files_.count(ovf::wide(name)) != 0 ? ovf::file_kind::regular : ovf::file_kind::missing;
  }
  bool stamp(ovf::wide_view, ovf::file_stamp& found) noexcept override {
    found = {};  // nobody else knows these files
    return true;
  }
  void wait_past(const ovf::file_stamp&) noexcept override {}
  bool remove(ovf::wide_view name) noexcept override {
    return files_.erase(ovf::wide(name)) != 0 || fail(not_there);
  }
  bool replace(ovf::wide_view from, ovf::wide_view to) noexcept override {
    const auto found = files_.find(ovf::wide(from));
    if (found == files_.end()) return fail(not_there);
    files_[ovf::wide(to)] = found->second;
    files_.erase(ovf::wide(from));
    return true;
  }
  bool replace_open(std::unique_ptr<ovf::file>& own, std::unique_ptr<ovf::file>& copy, ovf::wide_view from,
                    ovf::wide_view to, const ovf::file_stamp*) noexcept override {
    if (!replace(from, to)) return false;
    copy = nullptr;
    own = open(to, ovf::open_mode::edit);
    return true;
  }
  bool name_first(std::unique_ptr<ovf::file>&, ovf::wide_view from, ovf::wide_view to) noexcept override {
    return kind(to) == ovf::file_kind::missing ? replace(from, to) : fail(failed);
  }
  ovf::wide second_name(ovf::file&) noexcept override { return {}; }
  bool resolve(ovf::wide_view name, ovf::wide& path) noexcept override {
    path = name;
    return kind(name) == ovf::file_kind::regular || fail(not_there);
  }
  bool carry_rights(ovf::file&, ovf::file&) noexcept override { return true; }
  bool sync_folder(ovf::wide_view) noexcept override { return true; }
  ovf::wide temporary_folder() override { return OLESTR("/tmp/"); }

 private:
  std::map<ovf::wide, shared_content> files_;
  ovf::file_system* before_;
};

}  // namespace ovfuzz
