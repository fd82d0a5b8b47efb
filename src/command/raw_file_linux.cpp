#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <utility>

#include "console.h"
#include "failure.h"
#include "raw_file.h"

namespace command {
namespace {

int open_to_read(const std::string& name, int more_flags) {
  const int handle = ::open(name.c_str(), O_RDONLY | O_CLOEXEC | more_flags);
  if (handle < 0) throw failure("cannot open " + name + ": " + last_reason());
  return handle;
}

}  // namespace

raw_file raw_file::standard_input() { return {0, "standard input"}; }
raw_file raw_file::standard_output() { return {1, "standard output"}; }

raw_file raw_file::open(const std::string& name) { return {open_to_read(name, 0), name}; }

raw_file raw_file::open_at_once(const std::string& name) {
  return {open_to_read(name, O_NONBLOCK | O_NOCTTY), name};
}

raw_file raw_file::open_to_write(const std::string& name, const std::string& shown) {
  const int handle = ::open(name.c_str(), O_WRONLY | O_CLOEXEC);
  if (handle < 0) throw failure("cannot write " + shown + ": " + last_reason());
  return {handle, shown};
}

raw_file raw_file::make_new(const std::string& name, bool secret, bool& taken) {
  const mode_t mode = secret ? 0600 : 0666;
  const int handle = ::open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode);
  taken = handle < 0 && errno == EEXIST;
  if (handle < 0) throw failure("cannot create " + name + ": " + last_reason());
  return {handle, name};
}

raw_file raw_file::make_scratch() {
  const char* folder = ::secure_getenv("TMPDIR");
  std::string name = std::string(folder != nullptr && *folder != '\0' ? folder : "/tmp") + "/ovfile-XXXXXX";
  const int handle = ::mkostemp(name.data(), O_CLOEXEC);
  if (handle < 0) throw failure("cannot create a temporary file " + name + ": " + last_reason());
  ::unlink(name.c_str());
  return {handle, name};
}

raw_file::raw_file(raw_file&& other) noexcept
    : handle_(std::exchange(other.handle_, -1)), name_(std::move(other.name_)) {}

raw_file::~raw_file() {
  if (handle_ > 2) ::close(handle_);
}

std::size_t raw_file::read(char* bytes, std::size_t count) {
  for (;;) {
    throw_if_interrupted();
    const ssize_t done = ::read(handle_, bytes, count);
    if (done >= 0) return static_cast<std::size_t>(done);
    if (errno != EINTR) throw failure("cannot read " + name_ + ": " + last_reason());
  }
}

void raw_file::write(std::string_view bytes) {
  while (!bytes.empty()) {
    throw_if_interrupted();
    const ssize_t done = ::write(handle_, bytes.data(), bytes.size());
    if (done >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(done));
    } else if (errno == EPIPE) {
      throw broken_pipe();
    } else if (errno != EINTR) {
      throw failure("cannot write " + name_ + ": " + last_reason());
    }
  }
}

void raw_file::close() {
  if (::close(std::exchange(handle_, -1)) != 0) throw failure("cannot write " + name_ + ": " + last_reason());
}

bool raw_file::is_regular(std::uint64_t& bytes) const noexcept {
  struct stat facts {};
  if (::fstat(handle_, &facts) != 0 || !S_ISREG(facts.st_mode)) return false;
  bytes = static_cast<std::uint64_t>(facts.st_size);
  return true;
}

void raw_file::go_to(std::uint64_t position) {
  if (::lseek(handle_, static_cast<off_t>(position), SEEK_SET) < 0)
    throw failure("cannot read " + name_ + ": " + last_reason());
}

void sync_file(const std::string& name, const std::string& shown) {
  const int handle = ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
  const bool done = handle >= 0 && ::fsync(handle) == 0;
  const std::string reason = done ? std::string() : last_reason();
  if (handle >= 0) ::close(handle);
  if (!done) throw failure("cannot write " + shown + ": " + reason);
}

void sync_folder(const std::string& name) noexcept {
  const int handle = ::open(name.empty() ? "." : name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (handle < 0) return;
  ::fsync(handle);
  ::close(handle);
}

bool is_in_use(const std::string& name) noexcept {
  const int handle = ::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (handle < 0) return false;
  const bool in_use = ::flock(handle, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
  ::close(handle);
  return in_use;
}

void remove_file(const std::string& name) noexcept { ::unlink(name.c_str()); }

unsigned long process_number() noexcept { return static_cast<unsigned long>(::getpid()); }

}  // namespace command
