#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "base/file_descriptor_linux.h"
#include "base/system_error.h"

namespace ovf {
namespace {

int flags_of(open_mode mode) noexcept {
  switch (mode) {
    case open_mode::read:
      return O_RDONLY;
    case open_mode::look:
      return O_RDWR | O_NOFOLLOW;
    case open_mode::edit:
    case open_mode::truncate:
      return O_RDWR;
    case open_mode::edit_or_make:
      return O_RDWR | O_CREAT;
    case open_mode::make_new:
    case open_mode::scratch:
    case open_mode::make_copy:
    case open_mode::make_first:
      return O_RDWR | O_CREAT | O_EXCL;
  }
  return O_RDONLY;
}

bool refuse(int reason) noexcept {
  errno = reason;
  return false;
}

/// A name for the system without memory of its own: what is left to do when memory has run out needs none.
bool put_system_name(wide_view name, std::span<char> into) noexcept {
  std::size_t length = 0;
  for (std::size_t i = 0; i < name.size(); ++i) {
    std::uint32_t code = name[i];
    if (code >= 0xD800 && code < 0xDC00 && i + 1 < name.size() && name[i + 1] >= 0xDC00 &&
        name[i + 1] < 0xE000) {
      code = 0x10000 + ((code - 0xD800) << 10) + (name[++i] - 0xDC00U);
    }
    if (code == 0 || (code >= 0xD800 && code < 0xE000)) return refuse(ENOENT);
    constexpr std::size_t longest = 4;
    if (length + longest >= into.size()) return refuse(ENAMETOOLONG);
    const int rest = code < 0x80 ? 0 : code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    constexpr std::uint32_t first_bits[] = {0, 0xC0, 0xE0, 0xF0};
    into[length++] = static_cast<char>(first_bits[rest] | code >> (6 * rest));
    for (int left = rest - 1; left >= 0; --left) {
      into[length++] = static_cast<char>(0x80U | ((code >> (6 * left)) & 0x3FU));
    }
  }
  into[length] = '\0';
  return true;
}

bool makes_anew(open_mode mode) noexcept { return (flags_of(mode) & O_EXCL) != 0; }

/// What is only looked at, and a copy that others write by its name, is not in use.
bool is_locked(open_mode mode) noexcept {
  return mode != open_mode::look && mode != open_mode::make_copy && mode != open_mode::make_first;
}

/// A table in use holds a shared lock, and whoever empties or replaces it asks for the exclusive one.
bool prepare(int descriptor, descriptor_file& opened, open_mode mode) noexcept {
  struct stat facts;
  if (::fstat(descriptor, &facts) != 0) return false;
  if (!S_ISREG(facts.st_mode)) return refuse(S_ISDIR(facts.st_mode) ? EISDIR : EINVAL);
  return !is_locked(mode) || opened.lock(mode == open_mode::truncate ? LOCK_EX : LOCK_SH);
}

bool empty(int descriptor, descriptor_file& opened) noexcept {
  if (::ftruncate(descriptor, 0) != 0) return false;
  (void)opened.lock(LOCK_SH);
  return true;
}

/// As the mode says. What is looked at is opened for writing too where that may be, since some network file
/// systems lock nothing else exclusively; nothing is written to it.
int open_descriptor(const std::string& path, open_mode mode) noexcept {
  const bool own_alone = mode == open_mode::scratch || mode == open_mode::make_copy;
  // No advice on the order of access: segments are long, and walks from row to row want the read-ahead.
  // Without O_NONBLOCK a pipe under the file's name would hold the caller up.
  const int flags = flags_of(mode) | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  const int descriptor = ::open(path.c_str(), flags, own_alone ? mode_t{0600} : mode_t{0666});
  if (descriptor >= 0 || mode != open_mode::look) return descriptor;
  const int read_alone = ::open(path.c_str(), (flags & ~O_ACCMODE) | O_RDONLY);
  return read_alone >= 0 || errno != EACCES ? read_alone
                                            : ::open(path.c_str(), (flags & ~O_ACCMODE) | O_WRONLY);
}

/// Null with ESTALE when somebody put another file in the place of the opened one before it was locked;
/// `may_be_stale` takes what there is.
std::unique_ptr<file> open_once(const std::string& path, open_mode mode, bool may_be_stale) {
  auto opened = std::make_unique<descriptor_file>();
  const int descriptor = open_descriptor(path, mode);
  if (descriptor < 0) return nullptr;
  opened->take(descriptor);
  const bool usable = prepare(descriptor, *opened, mode) &&
                      (may_be_stale || opened->stands_at(path) || refuse(ESTALE)) &&
                      (mode != open_mode::truncate || empty(descriptor, *opened));
  if (usable) return opened;
  const int reason = errno;
  if (makes_anew(mode)) (void)::unlink(path.c_str());
  opened.reset();
  errno = reason;
  return nullptr;
}

class linux_files final : public file_system {
 public:
  std::unique_ptr<file> open(wide_view name, open_mode mode) noexcept override try {
    std::string path;
    if (!system_name(name, path)) return nullptr;
    // Some network file systems number one file differently from call to call: they get their way.
    constexpr int most_tries = 5;
    for (int tries = 1;; ++tries) {
      auto opened = open_once(path, mode, makes_anew(mode) || tries == most_tries);
      if (opened != nullptr || errno != ESTALE || tries == most_tries) return opened;
    }
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

  bool stamp(wide_view name, file_stamp& found) noexcept override try {
    std::string path;
    struct stat facts;
    if (!system_name(name, path) || ::stat(path.c_str(), &facts) != 0) return false;
    found = stamp_of(facts);
    return true;
  } catch (...) {
    errno = ENOMEM;
    return false;
  }

  void wait_past(const file_stamp& stamp) noexcept override {
    constexpr std::int64_t second = 1'000'000'000;
    constexpr struct timespec pause = {0, 1'000'000};
    for (;;) {
      struct timespec now;  // as files are given it
      if (::clock_gettime(CLOCK_REALTIME_COARSE, &now) != 0) return;
      const std::int64_t ahead = stamp.written - (now.tv_sec * second + now.tv_nsec);
      if (ahead < 0 || ahead > second) return;
      ::nanosleep(&pause, nullptr);
    }
  }

  bool remove(wide_view name) noexcept override {
    char path[PATH_MAX];
    return put_system_name(name, path) && ::unlink(path) == 0;
  }

  bool replace(wide_view from, wide_view to) noexcept override try {
    std::string old_path;
    std::string new_path;
    if (!system_name(from, old_path) || !system_name(to, new_path)) return false;
    return std::rename(old_path.c_str(), new_path.c_str()) == 0;
  } catch (...) {
    errno = ENOMEM;
    return false;
  }

  bool replace_open(std::unique_ptr<file>& own, std::unique_ptr<file>& copy, wide_view from, wide_view to,
                    const file_stamp* expected) noexcept override {
    return replace_open_file(own, copy, from, to, expected);
  }

  bool resolve(wide_view name, wide& path) noexcept override { return resolve_file(name, path); }

  bool name_first(std::unique_ptr<file>& copy, wide_view from, wide_view to) noexcept override {
    return name_file_first(static_cast<descriptor_file&>(*copy), from, to);
  }

  wide second_name(file& opened) noexcept override try {
    const std::string name = path_of_descriptor(static_cast<descriptor_file&>(opened).number());
    struct stat facts;
    return ::stat(name.c_str(), &facts) == 0 ? wide_from_utf8(name) : wide();
  } catch (...) {
    errno = ENOMEM;
    return {};
  }

  bool carry_rights(file& old, file& copy) noexcept override {
    return carry_file_rights(static_cast<descriptor_file&>(old).number(),
                             static_cast<descriptor_file&>(copy).number());
  }

  bool sync_folder(wide_view folder) noexcept override try {
    std::string path;
    if (!system_name(folder, path)) return false;
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
    const char* chosen = ::secure_getenv("TMPDIR");
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

bool system_name(wide_view name, std::string& converted) {
  for (std::size_t i = 0; i < name.size(); ++i) {
    const OLECHAR unit = name[i];
    const bool high = unit >= 0xD800 && unit < 0xDC00;
    const bool low = unit >= 0xDC00 && unit < 0xE000;
    if (unit == 0 || low) return refuse(ENOENT);
    if (!high) continue;
    if (++i == name.size() || name[i] < 0xDC00 || name[i] >= 0xE000) return refuse(ENOENT);
  }
  converted = utf8_from_wide(name);
  return true;
}

wide_view hidden_prefix() noexcept { return u"."; }

bool already_exists(std::uint32_t code) noexcept { return code == EEXIST; }

bool is_missing(std::uint32_t code) noexcept { return code == ENOENT; }

bool is_other_file(std::uint32_t code) noexcept { return code == ESTALE; }

bool is_in_use(std::uint32_t code) noexcept { return code == EWOULDBLOCK; }

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
