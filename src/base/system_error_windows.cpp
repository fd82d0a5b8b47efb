#include "base/system_error.h"

namespace ovf {

namespace {

wide unknown(std::uint32_t code) {
  static const wchar_t digits[] = L"0123456789abcdef";
  wide text = L"Unknown error 0x";
  for (int shift = 28; shift >= 0; shift -= 4) text.push_back(digits[code >> shift & 15]);
  return text;
}

wide message(DWORD code) {
  wchar_t* found = nullptr;
  const DWORD flags =
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
  // With ALLOCATE_BUFFER the system writes a pointer through the buffer argument.
  const DWORD length = FormatMessageW(flags, nullptr, code, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT),
                                      reinterpret_cast<wchar_t*>(&found), 0, nullptr);
  if (length == 0) return unknown(code);
  wide_view text(found, length);
  const std::size_t last = text.find_last_not_of(L"\r\n \t");
  wide result(text.substr(0, last == wide_view::npos ? 0 : last + 1));
  LocalFree(found);
  return result;
}

}  // namespace

system_code last_system_error() noexcept { return GetLastError(); }

void set_last_system_error(system_code code) noexcept { SetLastError(code); }

HRESULT last_error_status() noexcept {
  const DWORD code = GetLastError();
  return code == ERROR_SUCCESS ? E_FAIL : HRESULT_FROM_WIN32(code);
}

wide system_message(system_code code) { return message(code); }

wide status_message(HRESULT status) { return message(static_cast<DWORD>(status)); }

}  // namespace ovf
