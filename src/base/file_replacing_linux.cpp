#include <cstdio>
#include <cstdlib>

#include "base/file_descriptor_linux.h"

namespace ovf {
namespace {

/// Puts one name in another's place while nobody else has the file behind it open. The lock is held until the
/// other file has the name: who would open the old one meanwhile is turned away, or finds that its name is
/// another's. Who opened, changed and closed it before has his changes in it: `expected` tells.
bool rename_over(const descriptor_file& copy, descriptor_file& old, const std::string& from,
                 const std::string& to, const file_stamp* expected) noexcept {
  if (old.lock(LOCK_EX)) {
    file_stamp now;
    const bool is_as_expected = expected == nullptr || (old.stamp(now) && now == *expected);
    if (!is_as_expected || !old.stands_at(to) || !copy.is_named(from)) {
      errno = ESTALE;
    } else if (std::rename(from.c_str(), to.c_str()) == 0) {
      if (copy.is_named(to)) return true;
      errno = ESTALE;  // somebody was quicker with another file under the copy's name
    }
  }
  // A lock that could not be raised may be lost.
  const int reason = errno;
  (void)old.lock(LOCK_SH);
  errno = reason;
  return false;
}

/// Gives the copy a name that is free, where a file has but one or open files cannot be named.
bool rename_first(const descriptor_file& copy, const std::string& from, const std::string& to) noexcept {
  if (!copy.is_named(from)) {
    errno = ESTALE;
    return false;
  }
  bool done = ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0;
  if (!done && errno != EINVAL && errno != ENOSYS) return false;
  // A file system that cannot do it in one step: whoever makes a file of that name just now loses it.
  if (!done && ::access(to.c_str(), F_OK) == 0) {
    errno = EEXIST;
    return false;
  }
  done = done || std::rename(from.c_str(), to.c_str()) == 0;
  if (!done || copy.is_named(to)) return done;
  errno = ESTALE;
  return false;
}

}  // namespace

bool replace_open_file(std::unique_ptr<file>& own, std::unique_ptr<file>& copy, wide_view from, wide_view to,
                       const file_stamp* expected) noexcept try {
  std::string old_path;
  std::string new_path;
  if (!system_name(from, old_path) || !system_name(to, new_path)) return false;
  auto& made = static_cast<descriptor_file&>(*copy);
  if (!rename_over(made, static_cast<descriptor_file&>(*own), old_path, new_path, expected)) return false;
  (void)made.lock(LOCK_SH);
  own = std::move(copy);
  return true;
} catch (...) {
  errno = ENOMEM;
  return false;
}

bool name_file_first(const descriptor_file& copy, wide_view from, wide_view to) noexcept try {
  std::string old_path;
  std::string new_path;
  if (!system_name(from, old_path) || !system_name(to, new_path)) return false;
  // A second name for the open file: whoever may change the folder can put another one under its own.
  const std::string opened = path_of_descriptor(copy.number());
  if (::linkat(AT_FDCWD, opened.c_str(), AT_FDCWD, new_path.c_str(), AT_SYMLINK_FOLLOW) == 0) {
    if (copy.is_named(old_path)) (void)::unlink(old_path.c_str());
    return true;
  }
  if (errno == EEXIST) return false;
  return rename_first(copy, old_path, new_path);
} catch (...) {
  errno = ENOMEM;
  return false;
}

bool resolve_file(wide_view name, wide& path) noexcept try {
  std::string converted;
  if (!system_name(name, converted)) return false;
  char* whole = ::realpath(converted.c_str(), nullptr);
  if (whole == nullptr) return false;
  const std::unique_ptr<char, decltype(&std::free)> owned(whole, &std::free);
  path = wide_from_utf8(whole);
  return true;
} catch (...) {
  errno = ENOMEM;
  return false;
}

}  // namespace ovf
