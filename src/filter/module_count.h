// What keeps the module loaded: its live objects, references to its class object, and server locks.
#pragma once

#include <atomic>

#include "ovfile/component.h"

namespace ovf::filter {

/// Live objects and references to the class object.
inline std::atomic<LONG>& module_count() noexcept {
  static constinit std::atomic<LONG> count{0};
  return count;
}

/// Counted apart, so that a host that unlocks once too often cannot hide an object.
inline std::atomic<LONG>& server_locks() noexcept {
  static constinit std::atomic<LONG> count{0};
  return count;
}

inline bool may_unload() noexcept { return module_count() == 0 && server_locks() == 0; }

}  // namespace ovf::filter
