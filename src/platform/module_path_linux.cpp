#include <dlfcn.h>

#include <climits>
#include <cstdlib>

#include "platform/module_path.h"

namespace ovf {

namespace {
const char anchor = 0;  ///< lies in this module and nowhere else
}

wide module_path() {
  Dl_info info{};
  char path[PATH_MAX];
  if (dladdr(&anchor, &info) != 0 && info.dli_fname != nullptr) {
    // Links stay: they lead to the library also when another version of it has been installed.
    if (info.dli_fname[0] == '/') return wide_from_utf8(info.dli_fname);
    if (realpath(info.dli_fname, path) != nullptr) return wide_from_utf8(path);
  }
  // A program found on the path is named as it was called.
  if (realpath("/proc/self/exe", path) != nullptr) return wide_from_utf8(path);
  return {};
}

}  // namespace ovf
