// What must be true of every input.
#pragma once

#include <cstdio>
#include <cstdlib>

inline void require(bool truth, const char* what) {
  if (truth) return;
  std::fprintf(stderr, "not so: %s\n", what);
  std::abort();
}
