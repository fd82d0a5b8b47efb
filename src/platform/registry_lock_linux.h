// The lock of those who change a registry file.
#pragma once

#include <chrono>
#include <string>

#include "base/descriptor_linux.h"

namespace ovf {

/// Held while it lives. Waits for whoever holds it, though not for ever: its holder may have been stopped.
/// Without a lock `errno` has the reason, `EBUSY` after the longest wait.
descriptor registry_lock(const std::string& registry_file, std::chrono::milliseconds longest_wait);

}  // namespace ovf
