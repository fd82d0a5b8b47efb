#include <fstream>
#include <string>

#include "support/peak_memory.h"

namespace ovtest {

std::size_t peak_memory() {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    std::size_t kilobytes = 0;
    if (word == "VmHWM:" && status >> kilobytes) return kilobytes * 1024;
  }
  return 0;
}

}  // namespace ovtest
