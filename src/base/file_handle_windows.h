// Open files and file names of Windows, for what implements base/file.h there.
#pragma once

#include "base/file.h"
#include "base/system_error.h"

namespace ovf {

/// A name without inner zeros, ended by one; false, with ERROR_INVALID_NAME, for one that no file has.
bool system_name(wide_view name, wide& converted);

/// A time as `file_stamp` counts it.
inline std::int64_t count_of(const FILETIME& time) noexcept {
  return static_cast<std::int64_t>(std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime);
}

/// An open file.
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

  bool stamp(file_stamp& found) noexcept override {
    BY_HANDLE_FILE_INFORMATION facts;
    if (GetFileInformationByHandle(handle_, &facts) == 0) return false;
    const auto whole = [](DWORD high, DWORD low) { return std::uint64_t{high} << 32 | low; };
    found = {facts.dwVolumeSerialNumber, whole(facts.nFileIndexHigh, facts.nFileIndexLow),
             whole(facts.nFileSizeHigh, facts.nFileSizeLow), count_of(facts.ftLastWriteTime)};
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

  bool position(std::uint64_t& bytes) noexcept override {
    LARGE_INTEGER found;
    if (SetFilePointerEx(handle_, LARGE_INTEGER{}, &found, FILE_CURRENT) == 0) return false;
    bytes = static_cast<std::uint64_t>(found.QuadPart);
    return true;
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
  bool claim_growth() noexcept override {
    OVERLAPPED place = growth_lock();
    constexpr DWORD at_once = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;
    return LockFileEx(handle_, at_once, 0, 1, 0, &place) != 0 ||
           (GetLastError() != ERROR_LOCK_VIOLATION && GetLastError() != ERROR_IO_PENDING);
  }
  void give_back_growth() noexcept override {
    OVERLAPPED place = growth_lock();
    UnlockFileEx(handle_, 0, 1, 0, &place);
  }

  HANDLE handle() const noexcept { return handle_; }
  /// For a file that was made with INVALID_HANDLE_VALUE, on which everything fails.
  void take(HANDLE handle) noexcept { handle_ = handle; }

 private:
  static OVERLAPPED growth_lock() noexcept {
    OVERLAPPED place{};
    place.OffsetHigh = static_cast<DWORD>(growth_lock_position >> 32);
    return place;
  }

  HANDLE handle_;
};

/// What `file_system` says of these names.
bool resolve_file(wide_view name, wide& path) noexcept;
bool carry_file_rights(HANDLE from, HANDLE to) noexcept;
bool name_file_first(wide_view from, wide_view to) noexcept;
bool replace_open_file(std::unique_ptr<file>& own, std::unique_ptr<file>& copy, wide_view from, wide_view to,
                       const file_stamp* expected) noexcept;

}  // namespace ovf
