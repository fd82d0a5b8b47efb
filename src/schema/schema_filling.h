// How a table object tells a schema of this library from a foreign one, makes it ready to be filled from
// the open table, and sees that its fields have changed. The interface is the library's own and not
// published.
#pragma once

#include <cstdint>

#include "ovfile/smart.h"
#include "platform/object.h"

namespace ovf {

struct schema_filling : IUnknown {
  /// Forgets all fields and slots and opens the read-only latch, so that the adders work; whoever fills
  /// sets `ReadOnly` last.
  virtual void STDMETHODCALLTYPE begin_filling() noexcept = 0;
  /// Never 0, and never the same again once a field may have changed, in whatever schema.
  virtual std::uint64_t STDMETHODCALLTYPE field_stamp() noexcept = 0;
};

template <>
inline constexpr IID iid_of<schema_filling> = {
    0x4F2B7C90, 0x1E63, 0x4A8D, {0xB7, 0x15, 0xD9, 0x3C, 0x60, 0xA8, 0x2E, 0x54}};

/// The schema as one of this library's; null for any other.
inline ovfile::pointer<schema_filling> own_schema(IOvSchema& schema) noexcept {
  void* found = nullptr;
  ovfile::pointer<schema_filling> own;
  if (SUCCEEDED(schema.QueryInterface(iid_of<schema_filling>, &found))) {
    *own.out() = static_cast<schema_filling*>(found);
  }
  return own;
}

/// Calls `begin_filling` of a schema that is this library's; false, and nothing done, for any other.
inline bool begin_filling(IOvSchema& schema) noexcept {
  const auto own = own_schema(schema);
  if (own) own->begin_filling();
  return static_cast<bool>(own);
}

}  // namespace ovf
