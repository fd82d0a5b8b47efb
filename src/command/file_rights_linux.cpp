#include "file_rights_linux.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <exception>
#include <string_view>
#include <vector>

namespace command {
namespace {

constexpr const char* access_list = "system.posix_acl_access";
constexpr mode_t permissions = 07777;

bool has_none() noexcept { return errno == ENODATA || errno == ENOTSUP; }

/// An attribute's value; false where it cannot be read, with `errno` of `has_none` where there is none.
bool read_attribute(const std::string& file, const char* name, std::vector<char>& value) {
  const ssize_t size = ::getxattr(file.c_str(), name, nullptr, 0);
  if (size < 0) return false;
  value.resize(static_cast<std::size_t>(size));
  return ::getxattr(file.c_str(), name, value.data(), value.size()) == size;
}

/// What users have noted beside the file; where one cannot be kept nothing is lost that counts.
void carry_attributes(const std::string& from, int to) {
  const ssize_t size = ::listxattr(from.c_str(), nullptr, 0);
  if (size <= 0) return;
  std::vector<char> names(static_cast<std::size_t>(size));
  const ssize_t taken = ::listxattr(from.c_str(), names.data(), names.size());
  std::vector<char> value;
  for (std::size_t at = 0; taken > 0 && at < static_cast<std::size_t>(taken);) {
    const std::string name = names.data() + at;
    at += name.size() + 1;
    if (!name.starts_with("user.") || !read_attribute(from, name.c_str(), value)) continue;
    (void)::fsetxattr(to, name.c_str(), value.data(), value.size(), 0);
  }
}

/// A file may have come with a list from its folder: where the old one had none, the new one has none.
bool carry_access_list(const std::string& from, int to) {
  std::vector<char> list;
  if (read_attribute(from, access_list, list)) {
    return ::fsetxattr(to, access_list, list.data(), list.size(), 0) == 0;
  }
  return has_none() && (::fremovexattr(to, access_list) == 0 || has_none());
}

/// Only a privileged user may give files away; the group goes along where the user belongs to it.
void carry_owner(const struct stat& old, int to) noexcept {
  (void)::fchown(to, static_cast<uid_t>(-1), old.st_gid);
  (void)::fchown(to, old.st_uid, static_cast<gid_t>(-1));
}

/// A program that runs with its owner's or group's rights shall not run with another's.
mode_t mode_under(const struct stat& old, const struct stat& made, bool others_too) noexcept {
  mode_t mode = old.st_mode & permissions;
  if (made.st_uid != old.st_uid) mode &= ~static_cast<mode_t>(S_ISUID);
  if (made.st_gid != old.st_gid) mode &= ~static_cast<mode_t>(S_ISGID);
  if (!others_too) mode &= ~static_cast<mode_t>(S_IRWXG | S_IRWXO);
  return mode;
}

bool carry_all(const struct stat& old, const std::string& from, int to) {
  struct stat made {};
  carry_attributes(from, to);
  carry_owner(old, to);
  if (::fstat(to, &made) != 0) return false;
  const bool others_too = made.st_gid == old.st_gid && carry_access_list(from, to);
  if (!others_too) (void)::fremovexattr(to, access_list);
  // A file system without permissions refuses to set any, and gives both files the same.
  const mode_t mode = mode_under(old, made, others_too);
  return ::fchmod(to, mode) == 0 || (::fstat(to, &made) == 0 && (made.st_mode & permissions) == mode);
}

}  // namespace

bool carry_rights(const std::string& from, const std::string& to) noexcept try {
  struct stat old {};
  if (::stat(from.c_str(), &old) != 0) return errno == ENOENT;
  const int handle = ::open(to.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
  if (handle < 0) return false;
  const bool carried = carry_all(old, from, handle) && ::fsync(handle) == 0;
  const int reason = errno;
  ::close(handle);
  errno = reason;
  return carried;
} catch (const std::exception&) {
  errno = ENOMEM;
  return false;
}

}  // namespace command
