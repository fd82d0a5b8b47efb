#include "base/file_handle_windows.h"

namespace ovf {
namespace {

struct open_choice {
  DWORD access;
  DWORD share;
  DWORD disposition;
  DWORD attributes;
};

open_choice choice_of(open_mode mode) noexcept {
  constexpr DWORD both = GENERIC_READ | GENERIC_WRITE;
  switch (mode) {
    case open_mode::read:
      return {GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING, FILE_FLAG_RANDOM_ACCESS};
    case open_mode::edit:
      return {both, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING, FILE_FLAG_RANDOM_ACCESS};
    case open_mode::edit_or_make:
      return {both, FILE_SHARE_READ, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL};
    case open_mode::make_new:
      return {both, FILE_SHARE_READ, CREATE_NEW, FILE_ATTRIBUTE_NORMAL};
    case open_mode::truncate:
      return {both, FILE_SHARE_READ, TRUNCATE_EXISTING, FILE_ATTRIBUTE_NORMAL};
    case open_mode::make_copy:
    case open_mode::make_first:
      return {both, 0, CREATE_NEW, FILE_ATTRIBUTE_NORMAL};
    case open_mode::look:
      return {GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, OPEN_EXISTING,
              FILE_FLAG_OPEN_REPARSE_POINT};
    case open_mode::scratch:
      return {both, 0, CREATE_NEW, FILE_ATTRIBUTE_TEMPORARY};
  }
  return {GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL};
}

class windows_files final : public file_system {
 public:
  std::unique_ptr<file> open(wide_view name, open_mode mode) noexcept override try {
    wide path;
    if (!system_name(name, path)) return nullptr;
    const open_choice choice = choice_of(mode);
    // First: what was made under a name must not stay there for want of memory for its object.
    auto opened = std::make_unique<handle_file>(INVALID_HANDLE_VALUE);
    const HANDLE handle = CreateFileW(path.c_str(), choice.access, choice.share, nullptr, choice.disposition,
                                      choice.attributes, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return nullptr;
    if (GetFileType(handle) != FILE_TYPE_DISK) {
      CloseHandle(handle);
      SetLastError(ERROR_INVALID_NAME);
      return nullptr;
    }
    opened->take(handle);
    return opened;
  } catch (...) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
  }

  file_kind kind(wide_view name) noexcept override try {
    wide path;
    if (!system_name(name, path)) return file_kind::missing;
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return file_kind::missing;
    return (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE)) != 0 ? file_kind::other
                                                                                  : file_kind::regular;
  } catch (...) {
    return file_kind::missing;
  }

  bool stamp(wide_view name, file_stamp& found) noexcept override try {
    constexpr DWORD with_everybody = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    wide path;
    if (!system_name(name, path)) return false;
    const HANDLE handle =
        CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES, with_everybody, nullptr, OPEN_EXISTING, 0, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return false;
    return handle_file(handle).stamp(found);
  } catch (...) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return false;
  }

  void wait_past(const file_stamp& stamp) noexcept override {
    constexpr std::int64_t second = 10'000'000;
    for (;;) {
      FILETIME now{};  // as files are given it
      GetSystemTimeAsFileTime(&now);
      const std::int64_t ahead = stamp.written - count_of(now);
      if (ahead < 0 || ahead > second) return;
      Sleep(1);
    }
  }

  bool remove(wide_view name) noexcept override {
    // Without memory of its own: what is left to do when memory has run out needs none.
    constexpr std::size_t longest_path = 32767;
    wchar_t path[longest_path + 1];
    if (name.empty() || name.size() > longest_path || name.find(L'\0') != wide_view::npos) {
      SetLastError(ERROR_INVALID_NAME);
      return false;
    }
    path[name.copy(path, longest_path)] = L'\0';
    return DeleteFileW(path) != 0;
  }

  bool replace(wide_view from, wide_view to) noexcept override try {
    wide old_path;
    wide new_path;
    return system_name(from, old_path) && system_name(to, new_path) &&
           MoveFileExW(old_path.c_str(), new_path.c_str(),
                       MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
  } catch (...) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return false;
  }

  bool replace_open(std::unique_ptr<file>& own, std::unique_ptr<file>& copy, wide_view from, wide_view to,
                    const file_stamp* expected) noexcept override {
    return replace_open_file(own, copy, from, to, expected);
  }

  bool resolve(wide_view name, wide& path) noexcept override { return resolve_file(name, path); }

  bool name_first(std::unique_ptr<file>& copy, wide_view from, wide_view to) noexcept override {
    copy.reset();  // open files cannot be moved
    return name_file_first(from, to);
  }

  wide second_name(file&) noexcept override { return {}; }

  bool carry_rights(file& old, file& copy) noexcept override {
    return carry_file_rights(static_cast<handle_file&>(old).handle(),
                             static_cast<handle_file&>(copy).handle());
  }

  // The write-through of `replace` stands for it: the system has no flush for folders.
  bool sync_folder(wide_view) noexcept override { return true; }

  wide temporary_folder() override {
    wchar_t buffer[MAX_PATH + 1];
    const DWORD length = GetTempPathW(MAX_PATH + 1, buffer);
    return length > 0 && length <= MAX_PATH ? wide(buffer, length) : wide();
  }
};

}  // namespace

file_system& system_files() noexcept {
  static windows_files real;
  return real;
}

bool system_name(wide_view name, wide& converted) {
  if (name.empty() || name.find(L'\0') != wide_view::npos) {
    SetLastError(ERROR_INVALID_NAME);
    return false;
  }
  converted = name;
  return true;
}

wide_view hidden_prefix() noexcept { return {}; }

bool already_exists(std::uint32_t code) noexcept {
  return code == ERROR_FILE_EXISTS || code == ERROR_ALREADY_EXISTS;
}

bool is_missing(std::uint32_t code) noexcept {
  return code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND;
}

// An open file keeps its name here.
bool is_other_file(std::uint32_t code) noexcept { return code == ERROR_FILE_INVALID; }

bool is_in_use(std::uint32_t code) noexcept {
  return code == ERROR_SHARING_VIOLATION || code == ERROR_LOCK_VIOLATION;
}

bool is_absolute(wide_view path) noexcept { return path.find(L':') != wide_view::npos; }

wide with_own_separators(wide path) { return path; }

wide absolute_path(wide_view path) {
  const wide name(path);
  const DWORD length = GetFullPathNameW(name.c_str(), 0, nullptr, nullptr);
  if (length == 0) return name;
  wide whole(length, L'\0');
  const DWORD written = GetFullPathNameW(name.c_str(), length, whole.data(), nullptr);
  if (written == 0 || written >= length) return name;
  whole.resize(written);
  return whole;
}

}  // namespace ovf
