#include <windows.h>
// windows.h goes first.
#include "environment.h"
#include "ovfile/smart.h"

namespace command {

std::string environment_value(const char* name) {
  const std::wstring wide = ovfile::to_wide(name);
  std::wstring value(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length =
        GetEnvironmentVariableW(wide.c_str(), value.data(), static_cast<DWORD>(value.size()));
    if (length < value.size()) return ovfile::to_utf8({value.data(), length});
    value.resize(length);
  }
}

}  // namespace command
