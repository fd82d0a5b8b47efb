// The ANSI code page is the process's own.
#include <climits>
#include <new>

#include "base/text.h"

namespace ovf {

namespace {

int checked_length(std::size_t length) {
  if (length > INT_MAX) throw std::bad_alloc();
  return static_cast<int>(length);
}

}  // namespace

wide wide_from_ansi(std::string_view text) {
  if (text.empty()) return {};
  const int length = checked_length(text.size());
  wide result(static_cast<std::size_t>(MultiByteToWideChar(CP_ACP, 0, text.data(), length, nullptr, 0)),
              L'\0');
  MultiByteToWideChar(CP_ACP, 0, text.data(), length, result.data(), checked_length(result.size()));
  return result;
}

std::string ansi_from_wide(wide_view text) {
  if (text.empty()) return {};
  // A process that runs with UTF-8 as its code page has no best fits, and the flag would be refused.
  const bool utf8 = GetACP() == CP_UTF8;
  const DWORD flags = utf8 ? 0 : WC_NO_BEST_FIT_CHARS;
  const char* const unknown = utf8 ? nullptr : "?";
  const int length = checked_length(text.size());
  const int size = WideCharToMultiByte(CP_ACP, flags, text.data(), length, nullptr, 0, unknown, nullptr);
  std::string result(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_ACP, flags, text.data(), length, result.data(), size, unknown, nullptr);
  return result;
}

}  // namespace ovf
