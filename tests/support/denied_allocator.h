// What stands in for the allocator in a test program that denies memory (denied_memory.h): one source file
// of the program includes this.
#pragma once

#include <cstdlib>
#include <new>

#include "support/denied_memory.h"

namespace {
std::size_t denied = 0;
}

namespace ovtest {
void deny_allocations_of(std::size_t bytes) noexcept { denied = bytes; }
}  // namespace ovtest

void* operator new(std::size_t bytes) {
  if (denied != 0 && bytes == denied) throw std::bad_alloc();
  void* block = std::malloc(bytes != 0 ? bytes : 1);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
void* operator new[](std::size_t bytes) { return operator new(bytes); }
// The forms that answer null have to be of the same allocator as the ones that release.
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
  return denied != 0 && bytes == denied ? nullptr : std::malloc(bytes != 0 ? bytes : 1);
}
void* operator new[](std::size_t bytes, const std::nothrow_t& tag) noexcept {
  return operator new(bytes, tag);
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
