#include <windows.h>
// windows.h goes first.
#include <io.h>

#include "child_process.h"
#include "console.h"
#include "failure.h"
#include "ovfile/smart.h"
#include "system_reason.h"

namespace command {
namespace {

constexpr DWORD look_milliseconds = 100;
/// More than anybody reads.
constexpr std::size_t most_words = 1 << 16;

class owned_handle {
 public:
  explicit owned_handle(HANDLE held = nullptr) noexcept : held_(held) {}
  ~owned_handle() { reset(); }
  owned_handle(const owned_handle&) = delete;
  owned_handle& operator=(const owned_handle&) = delete;

  HANDLE get() const noexcept { return held_; }
  HANDLE* out() noexcept { return &held_; }
  void reset() noexcept {
    if (held_ != nullptr && held_ != INVALID_HANDLE_VALUE) CloseHandle(held_);
    held_ = nullptr;
  }

 private:
  HANDLE held_;
};

/// What has nothing to read, for a child.
void open_nothing(owned_handle& nothing) {
  SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  *nothing.out() = CreateFileW(L"NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                               OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
}

/// A handle of a file that a child can have.
void inherit(HANDLE handle, owned_handle& copy) {
  if (!DuplicateHandle(GetCurrentProcess(), handle, GetCurrentProcess(), copy.out(), 0, TRUE,
                       DUPLICATE_SAME_ACCESS)) {
    throw failure("cannot pass a file on: " + system_reason(GetLastError()));
  }
}

void inherit(const raw_file& file, owned_handle& copy) {
  inherit(reinterpret_cast<HANDLE>(_get_osfhandle(file.handle())), copy);
}

/// The system's own programs alone: others of the same name may understand something else.
std::wstring program_path(const std::string& name) {
  if (name.find_first_of("\\/") != std::string::npos) return ovfile::to_wide(name);
  wchar_t folder[MAX_PATH + 1];
  const UINT length = GetSystemDirectoryW(folder, static_cast<UINT>(std::size(folder)));
  return std::wstring(folder, length) + L"\\" + ovfile::to_wide(name) + L".exe";
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

std::wstring command_line(const std::vector<std::string>& arguments) {
  std::wstring line;
  for (const std::string& argument : arguments) append_quoted(line, ovfile::to_wide(argument));
  return line;
}

/// Does not outlive this object.
class child {
 public:
  child(const child_call& call, HANDLE words) {
    owned_handle input;
    owned_handle output;
    owned_handle errors;
    call.input != nullptr ? inherit(*call.input, input) : open_nothing(input);
    call.output != nullptr ? inherit(*call.output, output) : inherit(words, output);
    inherit(words, errors);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = input.get();
    start.hStdOutput = output.get();
    start.hStdError = errors.get();
    const std::wstring program = program_path(call.arguments[0]);
    std::wstring line = command_line(call.arguments);
    if (!CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr,
                        nullptr, &start, &process_)) {
      throw failure("cannot start " + call.arguments[0] + ": " + system_reason(GetLastError()));
    }
  }
  ~child() {
    // It has nothing to clean up: what it writes is ours.
    if (!has_ended(0)) TerminateProcess(process_.hProcess, 1);
    has_ended(INFINITE);
    CloseHandle(process_.hThread);
    CloseHandle(process_.hProcess);
  }
  child(const child&) = delete;
  child& operator=(const child&) = delete;

  bool has_ended(DWORD milliseconds) const noexcept {
    return WaitForSingleObject(process_.hProcess, milliseconds) == WAIT_OBJECT_0;
  }
  int status() const noexcept {
    DWORD status = 0;
    GetExitCodeProcess(process_.hProcess, &status);
    return static_cast<int>(status);
  }

 private:
  PROCESS_INFORMATION process_{};
};

/// What is there by now.
void take_words(HANDLE reader, std::string& words) {
  DWORD there = 0;
  while (PeekNamedPipe(reader, nullptr, 0, nullptr, &there, nullptr) && there > 0) {
    char bytes[4096];
    DWORD done = 0;
    if (!ReadFile(reader, bytes, sizeof bytes, &done, nullptr)) return;
    if (words.size() < most_words) words.append(bytes, done);
  }
}

}  // namespace

child_end run_child(const child_call& call, const std::function<void()>& look) {
  owned_handle reader;
  owned_handle writer;
  if (!CreatePipe(reader.out(), writer.out(), nullptr, 0)) {
    throw failure("cannot make a pipe: " + system_reason(GetLastError()));
  }
  const child running(call, writer.get());
  writer.reset();
  child_end end;
  while (!running.has_ended(look_milliseconds)) {
    take_words(reader.get(), end.words);
    throw_if_interrupted();
    look();
  }
  take_words(reader.get(), end.words);
  throw_if_interrupted();
  end.status = running.status();
  return end;
}

std::string own_program() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (length < path.size()) return ovfile::to_utf8({path.data(), length});
    path.resize(path.size() * 2);
  }
}

}  // namespace command
