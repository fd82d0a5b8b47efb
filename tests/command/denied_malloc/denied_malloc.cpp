// Loaded before a program it denies one allocation: the one that DENY_NTH counts from the moment on when a
// file whose name ends in DENY_FROM is opened. It makes the file DENY_MARK when it did.
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>

namespace {

std::atomic<long> left{-1};  // -1: not counting

template <class Function>
Function* next(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

bool is_denied() {
  if (left.load() <= 0 || left.fetch_sub(1) != 1) return false;
  const char* const mark = std::getenv("DENY_MARK");
  if (mark != nullptr) ::close(::creat(mark, 0600));
  errno = ENOMEM;
  return true;
}

void look_at(const char* path) {
  const char* const from = std::getenv("DENY_FROM");
  const char* const nth = std::getenv("DENY_NTH");
  if (left.load() != -1 || from == nullptr || nth == nullptr) return;
  const std::size_t length = std::strlen(path);
  const std::size_t end = std::strlen(from);
  if (length >= end && std::strcmp(path + length - end, from) == 0) left = std::atol(nth);
}

}  // namespace

extern "C" {

// The C library's own, which every allocator of its has under this name as well.
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);

void* malloc(std::size_t bytes) noexcept { return is_denied() ? nullptr : __libc_malloc(bytes); }
void* calloc(std::size_t count, std::size_t bytes) noexcept {
  return is_denied() ? nullptr : __libc_calloc(count, bytes);
}
void* realloc(void* block, std::size_t bytes) noexcept {
  return is_denied() ? nullptr : __libc_realloc(block, bytes);
}

int open(const char* path, int flags, ...) {
  look_at(path);
  std::va_list more;
  va_start(more, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : 0;
  va_end(more);
  return next<int(const char*, int, ...)>("open")(path, flags, mode);
}

}  // extern "C"
