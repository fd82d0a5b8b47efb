#include <sys/resource.h>

#include <algorithm>

#include "duckdb/crash_report.h"

namespace command {

void crash_in_silence() noexcept {
  rlimit limit{};
  if (::getrlimit(RLIMIT_CORE, &limit) != 0) return;
  // Programs that take images in the system's stead are called for a limit of 0 too, but not for one of 1.
  limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, 1);
  ::setrlimit(RLIMIT_CORE, &limit);
}

}  // namespace command
