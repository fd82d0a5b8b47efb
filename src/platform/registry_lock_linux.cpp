#include "platform/registry_lock_linux.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <thread>

namespace ovf {
namespace {

/// Whoever made it, everybody can lock it: that takes no permission to write, except on some network file
/// systems, which are asked for it first.
descriptor lock_file(const std::string& name) {
  constexpr int flags = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  descriptor file(open(name.c_str(), O_RDWR | O_CREAT | flags, 0666));
  if (!file) file = descriptor(open(name.c_str(), O_RDONLY | flags));
  return file;
}

}  // namespace

descriptor registry_lock(const std::string& registry_file, std::chrono::milliseconds longest_wait) {
  using clock = std::chrono::steady_clock;
  constexpr std::chrono::milliseconds pause{2};
  descriptor file = lock_file(registry_file + ".lock");
  const clock::time_point end = clock::now() + longest_wait;
  while (file && flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
    if (errno != EINTR && errno != EWOULDBLOCK) return {};
    if (clock::now() >= end) {
      errno = EBUSY;
      return {};
    }
    std::this_thread::sleep_for(pause);
  }
  return file;
}

}  // namespace ovf
