#include <windows.h>
// windows.h goes first.
#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <share.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <utility>

#include "console.h"
#include "failure.h"
#include "ovfile/smart.h"
#include "raw_file.h"
#include "system_reason.h"

namespace command {
namespace {

constexpr std::size_t largest_piece = 1 << 30;

int open_handle(const std::string& name, int flags, int sharing) {
  int handle = -1;
  const errno_t failed = _wsopen_s(&handle, ovfile::to_wide(name).c_str(), flags | _O_BINARY | _O_NOINHERIT,
                                   sharing, _S_IREAD | _S_IWRITE);
  errno = failed;
  return failed == 0 ? handle : -1;
}

}  // namespace

raw_file raw_file::standard_input() {
  _setmode(0, _O_BINARY);
  return {0, "standard input"};
}

raw_file raw_file::standard_output() {
  _setmode(1, _O_BINARY);
  return {1, "standard output"};
}

raw_file raw_file::open(const std::string& name) {
  const int handle = open_handle(name, _O_RDONLY | _O_SEQUENTIAL, _SH_DENYNO);
  if (handle < 0) throw failure("cannot open " + name + ": " + last_reason());
  return {handle, name};
}

raw_file raw_file::open_at_once(const std::string& name) { return open(name); }

raw_file raw_file::open_to_write(const std::string& name, const std::string& shown) {
  const int handle = open_handle(name, _O_WRONLY, _SH_DENYNO);
  if (handle < 0) throw failure("cannot write " + shown + ": " + last_reason());
  return {handle, shown};
}

raw_file raw_file::make_new(const std::string& name, bool, bool& taken) {
  const int handle = open_handle(name, _O_RDWR | _O_CREAT | _O_EXCL, _SH_DENYNO);
  taken = handle < 0 && errno == EEXIST;
  if (handle < 0) throw failure("cannot create " + name + ": " + last_reason());
  return {handle, name};
}

raw_file raw_file::make_scratch() {
  wchar_t folder[MAX_PATH + 1];
  wchar_t name[MAX_PATH + 1];
  if (GetTempPathW(static_cast<DWORD>(std::size(folder)), folder) == 0 ||
      GetTempFileNameW(folder, L"ovf", 0, name) == 0) {
    throw failure("cannot create a temporary file: " + system_reason(GetLastError()));
  }
  const std::string utf8 = ovfile::to_utf8(name);
  const int handle = open_handle(utf8, _O_RDWR | _O_TEMPORARY | _O_SHORT_LIVED, _SH_DENYRW);
  if (handle < 0) throw failure("cannot create a temporary file " + utf8 + ": " + last_reason());
  return {handle, utf8};
}

raw_file::raw_file(raw_file&& other) noexcept
    : handle_(std::exchange(other.handle_, -1)), name_(std::move(other.name_)) {}

raw_file::~raw_file() {
  if (handle_ > 2) _close(handle_);
}

std::size_t raw_file::read(char* bytes, std::size_t count) {
  throw_if_interrupted();
  const int done = _read(handle_, bytes, static_cast<unsigned>(std::min(count, largest_piece)));
  throw_if_interrupted();
  // The other end of a pipe that has closed it reads as EPIPE here, and means the end.
  if (done < 0 && errno == EPIPE) return 0;
  if (done < 0) throw failure("cannot read " + name_ + ": " + last_reason());
  return static_cast<std::size_t>(done);
}

void raw_file::write(std::string_view bytes) {
  while (!bytes.empty()) {
    throw_if_interrupted();
    const int done =
        _write(handle_, bytes.data(), static_cast<unsigned>(std::min(bytes.size(), largest_piece)));
    if (done <= 0) {
      const DWORD code = GetLastError();
      if (errno == EPIPE || code == ERROR_NO_DATA || code == ERROR_BROKEN_PIPE) throw broken_pipe();
      throw failure("cannot write " + name_ + ": " + last_reason());
    }
    bytes.remove_prefix(static_cast<std::size_t>(done));
  }
}

void raw_file::close() {
  if (_close(std::exchange(handle_, -1)) != 0) throw failure("cannot write " + name_ + ": " + last_reason());
}

bool raw_file::is_regular(std::uint64_t& bytes) const noexcept {
  const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(handle_));
  LARGE_INTEGER size;
  if (GetFileType(handle) != FILE_TYPE_DISK || !GetFileSizeEx(handle, &size)) return false;
  bytes = static_cast<std::uint64_t>(size.QuadPart);
  return true;
}

void raw_file::go_to(std::uint64_t position) {
  if (_lseeki64(handle_, static_cast<__int64>(position), SEEK_SET) < 0)
    throw failure("cannot read " + name_ + ": " + last_reason());
}

void sync_file(const std::string& name, const std::string& shown) {
  const int handle = open_handle(name, _O_RDWR, _SH_DENYNO);
  const bool done = handle >= 0 && _commit(handle) == 0;
  const std::string reason = done ? std::string() : last_reason();
  if (handle >= 0) _close(handle);
  if (!done) throw failure("cannot write " + shown + ": " + reason);
}

void sync_folder(const std::string&) noexcept {
  // A folder cannot be flushed here; what renames a file waits by itself.
}

bool is_in_use(const std::string& name) noexcept try {
  const HANDLE handle = CreateFileW(ovfile::to_wide(name).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return GetLastError() == ERROR_SHARING_VIOLATION;
  CloseHandle(handle);
  return false;
} catch (const std::exception&) {
  return false;
}

void remove_file(const std::string& name) noexcept {
  try {
    DeleteFileW(ovfile::to_wide(name).c_str());
  } catch (const std::exception&) {
    // Without memory for the name the file stays; there is nobody to tell.
  }
}

unsigned long process_number() noexcept { return GetCurrentProcessId(); }

}  // namespace command
