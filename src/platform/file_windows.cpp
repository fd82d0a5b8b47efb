#include "platform/file.h"
#include "platform/system_error.h"

namespace ovf {
namespace {

class handle_file final : public file {
 public:
  explicit handle_file(HANDLE handle) : handle_(handle) {}
  ~handle_file() override { CloseHandle(handle_); }
  handle_file(const handle_file&) = delete;
  handle_file& operator=(const handle_file&) = delete;

  bool size(std::uint64_t& bytes) noexcept override {
    LARGE_INTEGER value;
    if (!GetFileSizeEx(handle_, &value)) return false;
    bytes = static_cast<std::uint64_t>(value.QuadPart);
    return true;
  }

  bool seek(std::int64_t distance, seek_origin origin) noexcept override {
    LARGE_INTEGER target;
    target.QuadPart = distance;
    const DWORD method = origin == seek_origin::begin     ? FILE_BEGIN
                         : origin == seek_origin::current ? FILE_CURRENT
                                                          : FILE_END;
    return SetFilePointerEx(handle_, target, nullptr, method) != 0;
  }

  bool read(std::span<std::byte> bytes, std::size_t& done) noexcept override {
    DWORD count = 0;
    const bool worked =
        ReadFile(handle_, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr) != 0;
    done = count;
    return worked;
  }

  bool write(std::span<const std::byte> bytes, std::size_t& done) noexcept override {
    DWORD count = 0;
    const bool worked =
        WriteFile(handle_, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr) != 0;
    done = count;
    return worked;
  }

  bool set_end() noexcept override { return SetEndOfFile(handle_) != 0; }
  bool sync() noexcept override { return FlushFileBuffers(handle_) != 0; }

 private:
  HANDLE handle_;
};

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
    case open_mode::scratch:
      return {both, 0, CREATE_NEW, FILE_ATTRIBUTE_TEMPORARY};
  }
  return {GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL};
}

/// A name without inner zeros, ended by one.
bool system_name(wide_view name, wide& converted) {
  if (name.empty() || name.find(L'\0') != wide_view::npos) {
    SetLastError(ERROR_INVALID_NAME);
    return false;
  }
  converted = name;
  return true;
}

class windows_files final : public file_system {
 public:
  std::unique_ptr<file> open(wide_view name, open_mode mode) noexcept override try {
    wide path;
    if (!system_name(name, path)) return nullptr;
    const open_choice choice = choice_of(mode);
    const HANDLE handle = CreateFileW(path.c_str(), choice.access, choice.share, nullptr, choice.disposition,
                                      choice.attributes, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return nullptr;
    if (GetFileType(handle) != FILE_TYPE_DISK) {
      CloseHandle(handle);
      SetLastError(ERROR_INVALID_NAME);
      return nullptr;
    }
    return std::make_unique<handle_file>(handle);
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

  bool remove(wide_view name) noexcept override try {
    wide path;
    return system_name(name, path) && DeleteFileW(path.c_str()) != 0;
  } catch (...) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return false;
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

bool already_exists(std::uint32_t code) noexcept {
  return code == ERROR_FILE_EXISTS || code == ERROR_ALREADY_EXISTS;
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
