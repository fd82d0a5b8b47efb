#include <sys/xattr.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "platform/file_descriptor_linux.h"

namespace ovf {
namespace {

/// Puts one name in another's place while nobody else has the file behind it open.
bool rename_over(descriptor_file& old, const std::string& from, const std::string& to) noexcept {
  if (!old.stands_at(to)) {
    errno = ESTALE;
    return false;
  }
  if (old.lock(LOCK_EX) && std::rename(from.c_str(), to.c_str()) == 0) return true;
  // A lock that could not be raised may be lost.
  const int reason = errno;
  (void)old.lock(LOCK_SH);
  errno = reason;
  return false;
}

constexpr const char* access_list = "system.posix_acl_access";

/// Whether the failure of a call says that a file has no access list.
bool has_no_list() noexcept { return errno == ENODATA || errno == ENOTSUP; }

/// The list of who may do what beside owner, group and others; empty where there is none.
bool read_access_list(const std::string& path, std::vector<char>& list) {
  const ssize_t needed = ::getxattr(path.c_str(), access_list, nullptr, 0);
  if (needed < 0) return has_no_list();
  list.resize(static_cast<std::size_t>(needed));
  return ::getxattr(path.c_str(), access_list, list.data(), list.size()) == needed;
}

/// A file may have come with a list from its folder: where the old one had none, the new one has none.
bool carry_access_list(const std::string& from, const std::string& to) {
  std::vector<char> list;
  if (!read_access_list(from, list)) return false;
  if (list.empty()) return ::removexattr(to.c_str(), access_list) == 0 || has_no_list();
  return ::setxattr(to.c_str(), access_list, list.data(), list.size(), 0) == 0;
}

}  // namespace

bool replace_open_file(std::unique_ptr<file>& own, std::unique_ptr<file>& copy, wide_view from,
                       wide_view to) noexcept try {
  std::string old_path;
  std::string new_path;
  if (!system_name(from, old_path) || !system_name(to, new_path)) return false;
  std::unique_ptr<file> looked_at;
  if (own == nullptr) looked_at = system_files().open(to, open_mode::read);
  file* old = own != nullptr ? own.get() : looked_at.get();
  if (old == nullptr || !rename_over(static_cast<descriptor_file&>(*old), old_path, new_path)) return false;
  if (own != nullptr) own = std::move(copy);
  return true;
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

bool carry_file_rights(wide_view from, wide_view to) noexcept try {
  std::string old_path;
  std::string new_path;
  struct stat old;
  struct stat made;
  if (!system_name(from, old_path) || !system_name(to, new_path)) return false;
  if (::stat(old_path.c_str(), &old) != 0) return false;
  // Only a privileged user may give files away; the group goes along where the user belongs to it.
  (void)::chown(new_path.c_str(), static_cast<uid_t>(-1), old.st_gid);
  (void)::chown(new_path.c_str(), old.st_uid, static_cast<gid_t>(-1));
  // A list sets permissions as well, so it goes before them.
  if (!carry_access_list(old_path, new_path) || ::stat(new_path.c_str(), &made) != 0) return false;
  // A file system without permissions refuses to set any, and gives both files the same.
  constexpr mode_t permissions = 07777;
  return (made.st_mode & permissions) == (old.st_mode & permissions) ||
         ::chmod(new_path.c_str(), old.st_mode & permissions) == 0;
} catch (...) {
  errno = ENOMEM;
  return false;
}

}  // namespace ovf
