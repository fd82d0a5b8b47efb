#include <windows.h>
// windows.h goes first.
#include <iterator>

#include "ovfile/smart.h"
#include "system_reason.h"

namespace command {

std::string system_reason(unsigned long code) {
  wchar_t words[512];
  DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0,
                                words, static_cast<DWORD>(std::size(words)), nullptr);
  while (length > 0 && (words[length - 1] == L'\n' || words[length - 1] == L'\r')) --length;
  return ovfile::to_utf8({words, length});
}

}  // namespace command
