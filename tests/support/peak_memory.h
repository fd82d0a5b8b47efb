// The most memory that this process has held so far.
#pragma once

#include <cstddef>

namespace ovtest {

/// Resident bytes at their highest, 0 where the system does not tell.
std::size_t peak_memory();

}  // namespace ovtest
