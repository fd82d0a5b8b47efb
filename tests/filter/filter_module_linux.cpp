#include "filter/filter_module.h"

#include <dlfcn.h>

#include <stdexcept>

namespace ovtest {

void* find_filter_entry(const char* name) {
  // Stays loaded, as component modules do.
  static void* const module = dlopen(OVFILTER_PATH, RTLD_NOW | RTLD_LOCAL);
  void* found = module != nullptr ? dlsym(module, name) : nullptr;
  if (found == nullptr) throw std::runtime_error(dlerror());
  return found;
}

}  // namespace ovtest
