// Memory that passes from a component to its host, and the counted start of the component system.
#include <cstdlib>

#include "ovfile/component.h"

namespace {
thread_local ULONG initializations = 0;
}

void* CoTaskMemAlloc(SIZE_T bytes) { return std::malloc(bytes == 0 ? 1 : bytes); }

void* CoTaskMemRealloc(void* memory, SIZE_T bytes) {
  if (memory == nullptr) return CoTaskMemAlloc(bytes);
  if (bytes != 0) return std::realloc(memory, bytes);
  std::free(memory);
  return nullptr;
}

void CoTaskMemFree(void* memory) { std::free(memory); }

HRESULT CoInitialize(void*) { return CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }

HRESULT CoInitializeEx(void*, DWORD) { return initializations++ == 0 ? S_OK : S_FALSE; }

void CoUninitialize() {
  if (initializations > 0) --initializations;
}
