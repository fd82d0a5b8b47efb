// Memory that runs out for one size of block, in the test programs that replace the allocator.
#pragma once

#include <cstddef>

namespace ovtest {

/// Blocks of exactly this size cannot be had any more; 0 gives all back.
void deny_allocations_of(std::size_t bytes) noexcept;

}  // namespace ovtest
