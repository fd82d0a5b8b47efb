#include <vector>

#include "base/file_handle_windows.h"

namespace ovf {
namespace {

/// Virus scanners hold a file that has just come for a moment.
HANDLE opened_again(const wide& path) noexcept {
  constexpr int most_tries = 10;
  constexpr DWORD pause_in_milliseconds = 20;
  for (int tries = 1;; ++tries) {
    const HANDLE handle =
        CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                    OPEN_EXISTING, FILE_FLAG_RANDOM_ACCESS, nullptr);
    if (handle != INVALID_HANDLE_VALUE || tries == most_tries) return handle;
    Sleep(pause_in_milliseconds);
  }
}

/// The path of an open file, behind links.
bool path_of(HANDLE handle, wide& path) {
  wide whole(GetFinalPathNameByHandleW(handle, nullptr, 0, 0), L'\0');
  const DWORD length = GetFinalPathNameByHandleW(handle, whole.data(), static_cast<DWORD>(whole.size()), 0);
  if (length == 0 || length >= whole.size()) return false;
  whole.resize(length);
  path = std::move(whole);
  return true;
}

bool path_behind(const wide& name, wide& path) {
  constexpr DWORD with_everybody = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const HANDLE handle = CreateFileW(name.c_str(), 0, with_everybody, nullptr, OPEN_EXISTING, 0, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return false;
  const handle_file owned(handle);
  return path_of(handle, path);
}

/// The list of who may do what; file systems without one have nothing to carry.
bool carry_access_list(const wide& from, const wide& to) {
  DWORD needed = 0;
  GetFileSecurityW(from.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &needed);
  if (needed == 0) return true;
  std::vector<std::byte> rights(needed);
  return GetFileSecurityW(from.c_str(), DACL_SECURITY_INFORMATION, rights.data(), needed, &needed) != 0 &&
         SetFileSecurityW(to.c_str(), DACL_SECURITY_INFORMATION, rights.data()) != 0;
}

}  // namespace

bool replace_open_file(std::unique_ptr<file>& own, std::unique_ptr<file>& copy, wide_view from, wide_view to,
                       const file_stamp* expected) noexcept try {
  wide old_path;
  wide new_path;
  if (!system_name(from, old_path) || !system_name(to, new_path)) return false;
  // The time of the last write may be noted when the file is closed, as its caller has done by now.
  file_stamp now;
  if (expected != nullptr &&
      (!own->stamp(now) || !now.is_of_same_file(*expected) || now.bytes != expected->bytes)) {
    SetLastError(ERROR_FILE_INVALID);
    return false;
  }
  // Open files cannot be moved or replaced. A file that cannot be opened again fails at its next use.
  auto again = std::make_unique<handle_file>(INVALID_HANDLE_VALUE);
  copy.reset();
  own.reset();
  const bool done = MoveFileExW(old_path.c_str(), new_path.c_str(),
                                MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
  const DWORD reason = GetLastError();
  again->take(opened_again(new_path));
  own = std::move(again);
  SetLastError(reason);
  return done;
} catch (...) {
  SetLastError(ERROR_NOT_ENOUGH_MEMORY);
  return false;
}

bool resolve_file(wide_view name, wide& path) noexcept try {
  wide own;
  if (!system_name(name, own)) return false;
  const DWORD attributes = GetFileAttributesW(own.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return false;
  if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) return path_behind(own, path);
  path = absolute_path(own);
  return true;
} catch (...) {
  SetLastError(ERROR_NOT_ENOUGH_MEMORY);
  return false;
}

bool name_file_first(wide_view from, wide_view to) noexcept try {
  wide old_path;
  wide new_path;
  return system_name(from, old_path) && system_name(to, new_path) &&
         MoveFileExW(old_path.c_str(), new_path.c_str(), MOVEFILE_WRITE_THROUGH) != 0;
} catch (...) {
  SetLastError(ERROR_NOT_ENOUGH_MEMORY);
  return false;
}

bool carry_file_rights(HANDLE from, HANDLE to) noexcept try {
  constexpr DWORD carried = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE |
                            FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
  wide old_path;
  wide new_path;
  if (!path_of(from, old_path) || !path_of(to, new_path)) return false;
  const DWORD attributes = GetFileAttributesW(old_path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return false;
  const DWORD wanted = (attributes & carried) != 0 ? attributes & carried : FILE_ATTRIBUTE_NORMAL;
  return SetFileAttributesW(new_path.c_str(), wanted) != 0 && carry_access_list(old_path, new_path);
} catch (...) {
  SetLastError(ERROR_NOT_ENOUGH_MEMORY);
  return false;
}

}  // namespace ovf
