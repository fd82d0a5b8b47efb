#include <windows.h>
// windows.h goes first.
#include <stdexcept>

#include "ovfile/smart.h"
#include "support/file_bytes.h"
#include "support/process.h"
#include "support/scratch_folder.h"

namespace ovtest {
namespace {

std::string read_text(const std::filesystem::path& path) {
  const bytes content = read_bytes(path);
  return {content.begin(), content.end()};
}

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

process_result run_once(const std::vector<std::string>& arguments, const std::filesystem::path& folder,
                        const std::string& input) {
  const scratch_folder streams;
  write_bytes(streams / "in", bytes(input.begin(), input.end()));
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
  const auto create = [&] {
    return CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, folder.c_str(), &start,
                          &process) != 0;
  };
  // Under Wine on a busy machine the first try may fail.
  bool started = create();
  for (int tries = 1; !started && tries < 3; ++tries) {
    Sleep(500);
    started = create();
  }
  for (const HANDLE handle : {start.hStdInput, start.hStdOutput, start.hStdError}) CloseHandle(handle);
  if (!started) throw std::runtime_error("cannot start " + arguments[0]);
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD status = 0;
  GetExitCodeProcess(process.hProcess, &status);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return {static_cast<int>(status), read_text(streams / "out"), read_text(streams / "err")};
}

}  // namespace

process_result run_process(const std::vector<std::string>& arguments, const std::filesystem::path& folder,
                           const std::string& input) {
  // Under Wine a start can fail on a busy machine, silently and at once, while our programs say something
  // before they fail: silence means that there was no start.
  constexpr int most_starts = 3;
  for (int start = 1;; ++start) {
    process_result result = run_once(arguments, folder, input);
    const bool silent = result.output.empty() && result.error.empty();
    if (result.status == 0 || !silent || start == most_starts) return result;
  }
}

void set_environment(const std::string& name, const std::filesystem::path& value) {
  SetEnvironmentVariableW(ovfile::to_wide(name).c_str(), value.c_str());
}

}  // namespace ovtest
