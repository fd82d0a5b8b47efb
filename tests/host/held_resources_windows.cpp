#include "host/held_resources.h"

#include <windows.h>
// windows.h goes first.
#include <psapi.h>

#include <algorithm>

namespace ovtest {

std::size_t private_bytes() {
  PROCESS_MEMORY_COUNTERS_EX counters{};
  counters.cb = sizeof counters;
  auto* plain = reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters);
  if (K32GetProcessMemoryInfo(GetCurrentProcess(), plain, sizeof counters) == 0) return 0;
  // Which of the two is filled depends on the system's version.
  return std::max(counters.PrivateUsage, counters.PagefileUsage);
}

bool holds_file(const std::filesystem::path& path) {
  // To have it for oneself alone is refused while anyone has it open.
  const HANDLE file =
      CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return true;
  CloseHandle(file);
  return false;
}

}  // namespace ovtest
