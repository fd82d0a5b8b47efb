#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "platform/file.h"
#include "platform/system_error.h"

namespace ovf {
namespace {

/// A file name for the system; false for a text that no file can be named by.
bool system_name(wide_view name, std::string& converted) {
  for (std::size_t i = 0; i < name.size(); ++i) {
    const OLECHAR unit = name[i];
    const bool high = unit >= 0xD800 && unit < 0xDC00;
    const bool low = unit >= 0xDC00 && unit < 0xE000;
    if (unit == 0 || low) return false;
    if (!high) continue;
    if (++i == name.size() || name[i] < 0xDC00 || name[i] >= 0xE000) return false;
  }
  converted = utf8_from_wide(name);
  return true;
}

class descriptor_file final : public file {
 public:
  explicit descriptor_file(int descriptor) : descriptor_(descriptor) {}
  ~descriptor_file() override { ::close(descriptor_); }
  descriptor_file(const descriptor_file&) = delete;
  descriptor_file& operator=(const descriptor_file&) = delete;

  bool size(std::uint64_t& bytes) noexcept override {
    struct stat facts;
    if (::fstat(descriptor_, &facts) != 0) return false;
    bytes = static_cast<std::uint64_t>(facts.st_size);
    return true;
  }

  bool seek(std::int64_t distance, seek_origin origin) noexcept override {
    const int whence = origin == seek_origin::begin     ? SEEK_SET
                       : origin == seek_origin::current ? SEEK_CUR
                                                        : SEEK_END;
    return ::lseek(descriptor_, distance, whence) >= 0;
  }

  bool read(std::span<std::byte> bytes, std::size_t& done) noexcept override {
    done = 0;
    while (done < bytes.size()) {
      const ssize_t now = ::read(descriptor_, bytes.data() + done, bytes.size() - done);
      if (now == 0) break;
      if (now < 0 && errno == EINTR) continue;
      if (now < 0) return false;
      done += static_cast<std::size_t>(now);
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
    }
    return true;
  }

  bool set_end() noexcept override {
    const off_t position = ::lseek(descriptor_, 0, SEEK_CUR);
    return position >= 0 && ::ftruncate(descriptor_, position) == 0;
  }

  bool sync() noexcept override { return ::fsync(descriptor_) == 0; }

 private:
  int descriptor_;
};

int flags_of(open_mode mode) noexcept {
  switch (mode) {
    case open_mode::read:
      return O_RDONLY;
    case open_mode::edit:
    case open_mode::truncate:
      return O_RDWR;
    case open_mode::edit_or_make:
      return O_RDWR | O_CREAT;
    case open_mode::make_new:
    case open_mode::scratch:
      return O_RDWR | O_CREAT | O_EXCL;
  }
  return O_RDONLY;
}

/// A table in use holds a shared lock, and whoever empties or replaces it asks for the exclusive one.
/// File systems without locks let everybody pass.
bool lock(int descriptor, open_mode mode) noexcept {
  const int kind = mode == open_mode::truncate ? LOCK_EX : LOCK_SH;
  return ::flock(descriptor, kind | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

bool prepare(int descriptor, open_mode mode) noexcept {
  struct stat facts;
  if (::fstat(descriptor, &facts) != 0) return false;
  if (!S_ISREG(facts.st_mode)) {
    errno = S_ISDIR(facts.st_mode) ? EISDIR : EINVAL;
    return false;
  }
  if (!lock(descriptor, mode)) return false;
  if (mode != open_mode::truncate) return true;
  if (::ftruncate(descriptor, 0) != 0) return false;
  (void)::flock(descriptor, LOCK_SH | LOCK_NB);
  return true;
}

class linux_files final : public file_system {
 public:
  std::unique_ptr<file> open(wide_view name, open_mode mode) noexcept override try {
    std::string path;
    if (!system_name(name, path)) {
      errno = ENOENT;
      return nullptr;
    }
    const mode_t rights = mode == open_mode::scratch ? 0600 : 0666;
    // No advice on the order of access: segments are long, and walks from row to row want the read-ahead.
    // Without O_NONBLOCK a pipe under the file's name would hold the caller up.
    const int descriptor = ::open(path.c_str(), flags_of(mode) | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, rights);
    if (descriptor < 0) return nullptr;
    if (!prepare(descriptor, mode)) {
      const int reason = errno;
      ::close(descriptor);
      errno = reason;
      return nullptr;
    }
    return std::make_unique<descriptor_file>(descriptor);
  } catch (...) {
    errno = ENOMEM;
    return nullptr;
  }

  file_kind kind(wide_view name) noexcept override try {
    std::string path;
    struct stat facts;
    if (!system_name(name, path) || ::stat(path.c_str(), &facts) != 0) return file_kind::missing;
    return S_ISREG(facts.st_mode) ? file_kind::regular : file_kind::other;
  } catch (...) {
    return file_kind::missing;
  }

  bool remove(wide_view name) noexcept override try {
    std::string path;
    if (!system_name(name, path)) {
      errno = ENOENT;
      return false;
    }
    return ::unlink(path.c_str()) == 0;
  } catch (...) {
    errno = ENOMEM;
    return false;
  }

  bool replace(wide_view from, wide_view to) noexcept override try {
    std::string old_path;
    std::string new_path;
    if (!system_name(from, old_path) || !system_name(to, new_path)) {
      errno = ENOENT;
      return false;
    }
    return std::rename(old_path.c_str(), new_path.c_str()) == 0;
  } catch (...) {
    errno = ENOMEM;
    return false;
  }

  bool sync_folder(wide_view folder) noexcept override try {
    std::string path;
    if (!system_name(folder, path)) {
      errno = ENOENT;
      return false;
    }
    const int descriptor = ::open(path.empty() ? "." : path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return false;
    const bool done = ::fsync(descriptor) == 0;
    const int reason = errno;
    ::close(descriptor);
    errno = reason;
    return done;
  } catch (...) {
    errno = ENOMEM;
    return false;
  }

  wide temporary_folder() override {
    const char* chosen = std::getenv("TMPDIR");
    wide folder = wide_from_utf8(chosen != nullptr && *chosen != 0 ? chosen : "/tmp");
    if (folder.back() != u'/') folder += u'/';
    return kind(folder) == file_kind::other ? folder : wide();
  }
};

}  // namespace

file_system& system_files() noexcept {
  static linux_files real;
  return real;
}

bool already_exists(std::uint32_t code) noexcept { return code == EEXIST; }

bool is_absolute(wide_view path) noexcept {
  // A drive letter counts too: links written on Windows name their targets so.
  return path.starts_with(u'/') || (path.size() > 1 && path[1] == u':');
}

wide with_own_separators(wide path) {
  std::replace(path.begin(), path.end(), u'\\', u'/');
  return path;
}

wide absolute_path(wide_view path) {
  std::string converted;
  if (!system_name(path, converted)) return wide(path);
  if (converted.starts_with('/')) return wide(path);
  char* folder = ::getcwd(nullptr, 0);
  if (folder == nullptr) return wide(path);
  wide whole = wide_from_utf8(folder);
  std::free(folder);
  if (!whole.ends_with(u'/')) whole += u'/';
  return whole.append(path);
}

}  // namespace ovf
