#include <windows.h>
// windows.h goes first.
#include <psapi.h>

#include "support/peak_memory.h"

namespace ovtest {

std::size_t peak_memory() {
  PROCESS_MEMORY_COUNTERS counters{};
  counters.cb = sizeof counters;
  if (K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters) == 0) return 0;
  return counters.PeakWorkingSetSize;
}

}  // namespace ovtest
