// Who may do what with a file that takes another's place. Everything goes by open files: names may lead
// elsewhere by now.
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <vector>

#include "base/file_descriptor_linux.h"

namespace ovf {
namespace {

constexpr const char* access_list = "system.posix_acl_access";

/// Whether the failure of a call says that a file has no such attribute.
bool has_none() noexcept { return errno == ENODATA || errno == ENOTSUP; }

/// An attribute's value; false where it cannot be read, with `errno` of `has_none` where there is none.
bool read_attribute(int file, const char* name, std::vector<char>& value) {
  const ssize_t size = ::fgetxattr(file, name, nullptr, 0);
  if (size < 0) return false;
  value.resize(static_cast<std::size_t>(size));
  return ::fgetxattr(file, name, value.data(), value.size()) == size;
}

/// What users have noted beside the file; where one cannot be kept nothing is lost that counts.
void carry_attributes(int from, int to) {
  const ssize_t size = ::flistxattr(from, nullptr, 0);
  if (size <= 0) return;
  std::vector<char> names(static_cast<std::size_t>(size));
  const ssize_t taken = ::flistxattr(from, names.data(), names.size());
  std::vector<char> value;
  for (std::size_t at = 0; taken > 0 && at < static_cast<std::size_t>(taken);) {
    const std::string name = names.data() + at;
    at += name.size() + 1;
    if (!name.starts_with("user.") || !read_attribute(from, name.c_str(), value)) continue;
    (void)::fsetxattr(to, name.c_str(), value.data(), value.size(), 0);
  }
}

/// A file may have come with a list from its folder: where the old one had none, the new one has none.
bool carry_access_list(int from, int to) {
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

}  // namespace

bool carry_file_rights(int from, int to) noexcept try {
  constexpr mode_t permissions = 07777;
  constexpr mode_t of_group_and_others = S_IRWXG | S_IRWXO;
  constexpr mode_t of_whoever_runs_it = S_ISUID | S_ISGID;
  struct stat old;
  struct stat made;
  if (::fstat(from, &old) != 0) return false;
  carry_attributes(from, to);
  carry_owner(old, to);
  if (::fstat(to, &made) != 0) return false;
  const bool others_too = made.st_gid == old.st_gid && carry_access_list(from, to);
  if (!others_too) (void)::fremovexattr(to, access_list);
  // A list sets permissions as well, so it goes before them.
  mode_t mode = old.st_mode & permissions & ~of_whoever_runs_it;
  if (!others_too) mode &= ~of_group_and_others;
  // A file system without permissions refuses to set any, and gives both files the same.
  return ::fchmod(to, mode) == 0 || (::fstat(to, &made) == 0 && (made.st_mode & permissions) == mode);
} catch (...) {
  errno = ENOMEM;
  return false;
}

}  // namespace ovf
