#include <windows.h>
// windows.h goes first.
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <atomic>
#include <cstdlib>

#include "console.h"
#include "encoding.h"
#include "ovfile/smart.h"

namespace command {
namespace {

std::atomic<bool> stop_asked{false};
UINT old_output_page = 0;

void restore_output_page() { SetConsoleOutputCP(old_output_page); }

BOOL WINAPI remember_stop(DWORD) {
  stop_asked = true;
  return TRUE;
}

}  // namespace

std::vector<std::string> start_console(int, char**) {
  _setmode(2, _O_BINARY);  // lines end with LF in every stream
  if (is_terminal(standard_stream::output) || is_terminal(standard_stream::error)) {
    old_output_page = GetConsoleOutputCP();
    SetConsoleOutputCP(CP_UTF8);
    std::atexit(restore_output_page);
  }
  int count = 0;
  wchar_t** values = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 0; i < count; ++i) arguments.push_back(ovfile::to_utf8(values[i]));
  LocalFree(values);
  return arguments;
}

bool is_terminal(standard_stream stream) noexcept {
  // _isatty takes every character device for a terminal, NUL among them.
  DWORD mode = 0;
  const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(static_cast<int>(stream)));
  return GetConsoleMode(handle, &mode) != 0;
}

interrupt_guard::interrupt_guard() { SetConsoleCtrlHandler(remember_stop, TRUE); }

interrupt_guard::~interrupt_guard() { SetConsoleCtrlHandler(remember_stop, FALSE); }

bool is_stop_asked() noexcept { return stop_asked; }

void end_as_interrupted() { std::exit(static_cast<int>(STATUS_CONTROL_C_EXIT)); }

bool has_ansi_place(char32_t character) noexcept {
  if (character < 0x80) return true;
  if (character > 0xFFFF) return false;
  const auto unit = static_cast<wchar_t>(character);
  char bytes[8];
  BOOL replaced = FALSE;
  // The UTF-8 code page takes no default character and would need several bytes for one character.
  if (GetACP() == CP_UTF8) return false;
  const int length =
      WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, &unit, 1, bytes, sizeof bytes, nullptr, &replaced);
  return length == 1 && !replaced;
}

}  // namespace command
