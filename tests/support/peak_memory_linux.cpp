#include <algorithm>
#include <fstream>
#include <string>

#include "support/peak_memory.h"

namespace ovtest {

std::size_t peak_memory() {
  // The system counts pages in batches: what it calls the highest may be a little lower at the next question.
  static std::size_t highest = 0;
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    std::size_t kilobytes = 0;
    if (word == "VmHWM:" && status >> kilobytes) return highest = std::max(highest, kilobytes * 1024);
  }
  return highest;
}

}  // namespace ovtest
