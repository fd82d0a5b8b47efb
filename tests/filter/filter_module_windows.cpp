#include "filter/filter_module.h"

#include <windows.h>

#include <stdexcept>
#include <string>

namespace ovtest {

void* find_filter_entry(const char* name) {
  static const HMODULE module = LoadLibraryA(OVFILTER_PATH);
  const FARPROC found = module != nullptr ? GetProcAddress(module, name) : nullptr;
  if (found == nullptr) throw std::runtime_error(std::string("not found: ") + name);
  return reinterpret_cast<void*>(found);
}

}  // namespace ovtest
