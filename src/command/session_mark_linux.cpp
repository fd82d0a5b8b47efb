#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

#include "failure.h"
#include "raw_file.h"
#include "session_mark.h"

namespace command {
namespace {

constexpr const char* mark_name = "MaxFieldNameLength";

std::string setting(const char* name) {
  const char* const value = ::secure_getenv(name);
  return value == nullptr ? "" : value;
}

/// The folder in which atoms are files. Without a slash at its end: the system would follow a link.
std::string atom_folder() {
  std::string folder = setting("OVFILE_ATOMS");
  if (folder.empty()) {
    const std::string runtime = setting("XDG_RUNTIME_DIR");
    folder = runtime.empty() ? "/tmp/orvexa-atoms-" + std::to_string(::getuid()) : runtime + "/orvexa-atoms";
  }
  while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
  return folder;
}

/// The folder, or -1 where there is none. Like the library, never uses one that somebody else may have put
/// there.
int open_own_folder(const std::string& name) {
  const int folder = ::open(name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  struct stat facts {};
  if (folder < 0 || (::fstat(folder, &facts) == 0 && facts.st_uid == ::geteuid())) return folder;
  ::close(folder);
  return -1;
}

}  // namespace

bool session_is_marked() {
  const int folder = open_own_folder(atom_folder());
  if (folder < 0) return false;
  struct stat facts {};
  const bool marked =
      ::fstatat(folder, mark_name, &facts, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(facts.st_mode);
  ::close(folder);
  return marked;
}

void forget_session_mark() {
  const std::string name = atom_folder();
  const int folder = open_own_folder(name);
  if (folder < 0) return;
  const bool failed = ::unlinkat(folder, mark_name, 0) != 0 && errno != ENOENT;
  const std::string reason = failed ? last_reason() : std::string();
  ::close(folder);
  if (failed) throw failure("cannot remove " + name + "/" + mark_name + ": " + reason);
}

}  // namespace command
