#include <windows.h>
// windows.h goes first.
#include <stdexcept>

#include "ovfile/smart.h"
#include "support/file_bytes.h"
#include "support/process.h"
#include "support/scratch_folder.h"

namespace ovtest {
namespace {

HANDLE open_stream(const std::filesystem::path& path, bool write) {
  SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  const HANDLE handle =
      CreateFileW(path.c_str(), write ? GENERIC_WRITE : GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                  &inherited, write ? CREATE_ALWAYS : OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) throw std::runtime_error("cannot open " + path.string());
  return handle;
}

/// One argument as the C runtime of the program takes it apart again.
void append_quoted(std::wstring& line, const std::wstring& argument) {
  if (!line.empty()) line += L' ';
  line += L'"';
  std::size_t backslashes = 0;
  for (const wchar_t c : argument) {
    if (c == L'"') line.append(backslashes + 1, L'\\');
    backslashes = c == L'\\' ? backslashes + 1 : 0;
    line += c;
  }
  line.append(backslashes, L'\\');
  line += L'"';
}

}  // namespace

process_result run_process(const std::vector<std::string>& arguments, const std::filesystem::path& folder,
                           const std::string& input) {
  const scratch_folder streams;
  write_text(streams / "in", input);
  std::wstring line;
  for (const std::string& argument : arguments) append_quoted(line, ovfile::to_wide(argument));

  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = open_stream(streams / "in", false);
  start.hStdOutput = open_stream(streams / "out", true);
  start.hStdError = open_stream(streams / "err", true);
  // A program of tests that is started for one of them runs it, whatever part of all runs here.
  for (const wchar_t* const name : {L"GTEST_TOTAL_SHARDS", L"GTEST_SHARD_INDEX"}) {
    SetEnvironmentVariableW(name, nullptr);
  }
  PROCESS_INFORMATION process{};
  const bool is_started = CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                         folder.c_str(), &start, &process) != 0;
  const DWORD reason = GetLastError();
  for (const HANDLE handle : {start.hStdInput, start.hStdOutput, start.hStdError}) CloseHandle(handle);
  if (!is_started) {
    throw std::runtime_error("cannot start " + arguments[0] + ": error " + std::to_string(reason));
  }
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD status = 0;
  GetExitCodeProcess(process.hProcess, &status);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return {static_cast<int>(status), read_text(streams / "out"), read_text(streams / "err")};
}

void set_environment(const std::string& name, const std::filesystem::path& value) {
  SetEnvironmentVariableW(ovfile::to_wide(name).c_str(), value.c_str());
}

}  // namespace ovtest
