#include <windows.h>
// windows.h goes first.
#include "duckdb/crash_report.h"

namespace command {

void crash_in_silence() noexcept {
  SetErrorMode(GetErrorMode() | SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
}

}  // namespace command
