// A session's atoms are empty files in a folder that only the user can write. A folder that somebody
// else put in its place is never trusted: it could promise or hide atoms.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "base/descriptor_linux.h"
#include "platform/atoms.h"
#include "platform/environment_linux.h"

namespace ovf {

namespace {

std::string atom_folder() {
  std::string folder = environment_value("OVFILE_ATOMS");
  if (folder.empty()) {
    const std::string runtime = environment_value("XDG_RUNTIME_DIR");
    folder = runtime.empty() ? "/tmp/orvexa-atoms-" + std::to_string(getuid()) : runtime + "/orvexa-atoms";
  }
  // A slash at the end would make the system follow a link.
  while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
  return folder;
}

descriptor open_folder(bool make) {
  const std::string folder = atom_folder();
  if (make && mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) return {};
  descriptor opened(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  struct stat facts {};
  if (!opened || fstat(opened.get(), &facts) != 0) return {};
  if (facts.st_uid != geteuid()) {
    errno = EPERM;
    return {};
  }
  return opened;
}

bool is_plain(unsigned char byte) {
  return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
         byte == '-' || byte == '_';
}

std::string file_name(wide_view atom) {
  static const char digits[] = "0123456789ABCDEF";
  std::string result;
  for (const char letter : utf8_from_wide(atom)) {
    const auto byte = static_cast<unsigned char>(letter);
    if (is_plain(byte)) {
      result.push_back(letter);
    } else {
      result.push_back('%');
      result.push_back(digits[byte >> 4]);
      result.push_back(digits[byte & 15]);
    }
  }
  return result;
}

template <class Action>
bool in_folder(wide_view name, bool make, Action action) noexcept {
  try {
    if (name.empty()) return false;
    const descriptor folder = open_folder(make);
    return folder && action(folder.get(), file_name(name).c_str());
  } catch (...) {
    return false;
  }
}

}  // namespace

bool global_atom_exists(wide_view name) noexcept {
  return in_folder(name, false, [](int folder, const char* file) {
    struct stat facts {};
    return fstatat(folder, file, &facts, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(facts.st_mode);
  });
}

bool add_global_atom(wide_view name) noexcept {
  return in_folder(name, true, [](int folder, const char* file) {
    const int flags = O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    return static_cast<bool>(descriptor(openat(folder, file, flags, 0600)));
  });
}

bool remove_global_atom(wide_view name) noexcept {
  return in_folder(name, false, [](int folder, const char* file) { return unlinkat(folder, file, 0) == 0; });
}

}  // namespace ovf
