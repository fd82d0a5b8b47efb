// How a table object tells a schema of this library from a foreign one, and makes it ready to be filled
// from the open table. The interface is the library's own and not published.
#pragma once

#include "platform/object.h"

namespace ovf {

struct schema_filling : IUnknown {
  /// Forgets all fields and slots and opens the read-only latch, so that the adders work; whoever fills
  /// sets `ReadOnly` last.
  virtual void STDMETHODCALLTYPE begin_filling() noexcept = 0;
};

template <>
inline constexpr IID iid_of<schema_filling> = {
    0x4F2B7C90, 0x1E63, 0x4A8D, {0xB7, 0x15, 0xD9, 0x3C, 0x60, 0xA8, 0x2E, 0x54}};

/// Calls `begin_filling` of a schema that is this library's; false, and nothing done, for any other.
inline bool begin_filling(IOvSchema& schema) noexcept {
  void* found = nullptr;
  if (FAILED(schema.QueryInterface(iid_of<schema_filling>, &found)) || found == nullptr) return false;
  auto* own = static_cast<schema_filling*>(found);
  own->begin_filling();
  own->Release();
  return true;
}

}  // namespace ovf
