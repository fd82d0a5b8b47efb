// Open files and file names of Linux, for what implements base/file.h there.
#pragma once

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <string>

#include "base/file.h"

namespace ovf {

/// A file name for the system; false, with ENOENT, for a text that no file can be named by.
bool system_name(wide_view name, std::string& converted);

inline file_stamp stamp_of(const struct stat& facts) noexcept {
  constexpr std::int64_t nanoseconds = 1'000'000'000;
  return {facts.st_dev, facts.st_ino, static_cast<std::uint64_t>(facts.st_size),
          facts.st_mtim.tv_sec * nanoseconds + facts.st_mtim.tv_nsec};
}

/// An open file. While it is open it holds a shared lock, by which others see that it is in use.
class descriptor_file final : public file {
 public:
  /// Of no file yet: what was made under a name must not stay there for want of memory for its object.
  descriptor_file() = default;
  ~descriptor_file() override { take(-1); }
  descriptor_file(const descriptor_file&) = delete;
  descriptor_file& operator=(const descriptor_file&) = delete;

  /// Holds an open file, and lets go of the one before.
  void take(int descriptor) noexcept {
    if (descriptor_ >= 0) ::close(descriptor_);
    descriptor_ = descriptor;
    position_ = 0;
  }

  bool size(std::uint64_t& bytes) noexcept override {
    struct stat facts;
    if (::fstat(descriptor_, &facts) != 0) return false;
    bytes = static_cast<std::uint64_t>(facts.st_size);
    return true;
  }

  bool stamp(file_stamp& found) noexcept override {
    struct stat facts;
    if (::fstat(descriptor_, &facts) != 0) return false;
    found = stamp_of(facts);
    return true;
  }

  bool seek(std::int64_t distance, seek_origin origin) noexcept override {
    const int whence = origin == seek_origin::begin     ? SEEK_SET
                       : origin == seek_origin::current ? SEEK_CUR
                                                        : SEEK_END;
    const off_t reached = ::lseek(descriptor_, distance, whence);
    if (reached >= 0) position_ = static_cast<std::uint64_t>(reached);
    return reached >= 0;
  }

  bool position(std::uint64_t& bytes) noexcept override {
    bytes = position_;
    return true;
  }

  bool read(std::span<std::byte> bytes, std::size_t& done) noexcept override {
    done = 0;
    while (done < bytes.size()) {
      const ssize_t now = ::read(descriptor_, bytes.data() + done, bytes.size() - done);
      if (now == 0) break;
      if (now < 0 && errno == EINTR) continue;
      if (now < 0) return false;
      done += static_cast<std::size_t>(now);
      position_ += static_cast<std::uint64_t>(now);
    }
    return true;
  }

  bool write(std::span<const std::byte> bytes, std::size_t& done) noexcept override {
    done = 0;
    while (done < bytes.size()) {
      const ssize_t now = ::write(descriptor_, bytes.data() + done, bytes.size() - done);
      if (now < 0 && errno == EINTR) continue;
      if (now <= 0) return false;
      done += static_cast<std::size_t>(now);
      position_ += static_cast<std::uint64_t>(now);
    }
    return true;
  }

  bool set_end() noexcept override { return ::ftruncate(descriptor_, static_cast<off_t>(position_)) == 0; }

  bool sync() noexcept override { return ::fsync(descriptor_) == 0; }
  bool claim_growth() noexcept override {
    return lock_growth(F_WRLCK) || (errno != EAGAIN && errno != EACCES);
  }
  void give_back_growth() noexcept override { (void)lock_growth(F_UNLCK); }

  /// Asks for a lock without waiting; file systems without locks let everybody pass.
  bool lock(int kind) noexcept { return ::flock(descriptor_, kind | LOCK_NB) == 0 || errno != EWOULDBLOCK; }
  int number() const noexcept { return descriptor_; }
  /// Whether the path still leads to this file.
  bool stands_at(const std::string& path) const noexcept {
    struct stat there;
    return ::stat(path.c_str(), &there) == 0 && is(there);
  }
  /// Whether the path names this file itself, and not a link to it.
  bool is_named(const std::string& path) const noexcept {
    struct stat there;
    return ::lstat(path.c_str(), &there) == 0 && is(there);
  }

 private:
  bool is(const struct stat& other) const noexcept {
    struct stat own;
    return ::fstat(descriptor_, &own) == 0 && own.st_dev == other.st_dev && own.st_ino == other.st_ino;
  }

  /// The lock belongs to the open file, not to the process, which may have the table open twice.
  bool lock_growth(short kind) noexcept {
    struct flock range = {};
    range.l_type = kind;
    range.l_whence = SEEK_SET;
    range.l_start = growth_lock_position;
    range.l_len = 1;
    return ::fcntl(descriptor_, F_OFD_SETLK, &range) == 0;
  }

  int descriptor_ = -1;
  std::uint64_t position_ = 0;  ///< nobody else moves it
};

/// A name that leads to an open file, whatever stands under its own.
inline std::string path_of_descriptor(int number) { return "/proc/self/fd/" + std::to_string(number); }

/// What `file_system` says of these names.
bool resolve_file(wide_view name, wide& path) noexcept;
bool carry_file_rights(int from, int to) noexcept;
bool name_file_first(const descriptor_file& copy, wide_view from, wide_view to) noexcept;
bool replace_open_file(std::unique_ptr<file>& own, std::unique_ptr<file>& copy, wide_view from, wide_view to,
                       const file_stamp* expected) noexcept;

}  // namespace ovf
