// What keeps the module loaded: its live objects, references to its class object, and server locks.
#pragma once

#include <atomic>

#include "ovfile/component.h"

namespace ovf::filter {

inline std::atomic<LONG>& module_count() noexcept {
  static constinit std::atomic<LONG> count{0};
  return count;
}

}  // namespace ovf::filter
