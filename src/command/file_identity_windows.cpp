#include <windows.h>
// windows.h goes first.
#include "file_identity.h"
#include "ovfile/smart.h"
#include "words.h"

namespace command {

std::string file_identity(const std::string& name) {
  const HANDLE file =
      CreateFileW(ovfile::to_wide(name).c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                  nullptr, OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return {};
  BY_HANDLE_FILE_INFORMATION facts{};
  const BOOL told = GetFileInformationByHandle(file, &facts);
  CloseHandle(file);
  if (told == 0) return {};
  return fmt::format("{} {} {} {} {} {} {}", facts.dwVolumeSerialNumber, facts.nFileIndexHigh,
                     facts.nFileIndexLow, facts.nFileSizeHigh, facts.nFileSizeLow,
                     facts.ftLastWriteTime.dwHighDateTime, facts.ftLastWriteTime.dwLowDateTime);
}

}  // namespace command
