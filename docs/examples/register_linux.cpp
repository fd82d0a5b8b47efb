// register MODULE [u]: enters the classes of a component library into the user's registry, or takes them out.
#include <dlfcn.h>

#include <cstdio>

#include "ovfile/component.h"

int main(int count, char** values) {
  if (count < 2) return 2;
  void* module = dlopen(values[1], RTLD_NOW);
  if (module == nullptr) {
    std::fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  const char* name = count > 2 ? "DllUnregisterServer" : "DllRegisterServer";
  const auto entry = reinterpret_cast<HRESULT (*)()>(dlsym(module, name));
  const HRESULT status = entry != nullptr ? entry() : E_FAIL;
  if (FAILED(status)) std::fprintf(stderr, "%s answers 0x%08X\n", name, static_cast<unsigned>(status));
  return FAILED(status) ? 1 : 0;
}
