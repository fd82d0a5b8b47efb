#include "host/registry_snapshot_windows.h"

#include <windows.h>

#include <vector>

#include "ovfile/smart.h"

namespace ovtest {
namespace {

std::string shown(DWORD type, const std::vector<BYTE>& data) {
  if (type == REG_SZ) {
    std::wstring text(reinterpret_cast<const wchar_t*>(data.data()), data.size() / sizeof(wchar_t));
    return ovfile::to_utf8(text.c_str());
  }
  std::string bytes = std::to_string(type) + ':';
  for (const BYTE byte : data) bytes += ' ' + std::to_string(byte);
  return bytes;
}

void add_values(HKEY key, const std::string& path, registry_snapshot& found) {
  static std::wstring name(16384, L'\0');
  static std::vector<BYTE> data(65536);
  for (DWORD i = 0;; ++i) {
    DWORD length = static_cast<DWORD>(name.size());
    DWORD size = static_cast<DWORD>(data.size());
    DWORD type = 0;
    const LSTATUS status = RegEnumValueW(key, i, name.data(), &length, nullptr, &type, data.data(), &size);
    if (status != ERROR_SUCCESS && status != ERROR_MORE_DATA) return;
    const std::string value = path + (length == 0 ? "@" : ovfile::to_utf8({name.data(), length}));
    found[value] = status == ERROR_SUCCESS
                       ? shown(type, {data.begin(), data.begin() + static_cast<std::ptrdiff_t>(size)})
                       : "longer";
  }
}

void add_key(HKEY parent, const wchar_t* name, const std::string& path, registry_snapshot& found) {
  HKEY key = nullptr;
  if (RegOpenKeyExW(parent, name, 0, KEY_READ, &key) != ERROR_SUCCESS) return;
  found[path] = {};
  add_values(key, path, found);
  wchar_t child[256];
  for (DWORD i = 0;; ++i) {
    DWORD length = 256;
    if (RegEnumKeyExW(key, i, child, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
    add_key(key, child, path + ovfile::to_utf8({child, length}) + '\\', found);
  }
  RegCloseKey(key);
}

}  // namespace

registry_snapshot whole_registry() {
  registry_snapshot found;
  add_key(HKEY_LOCAL_MACHINE, L"Software", "HKLM\\Software\\", found);
  add_key(HKEY_CURRENT_USER, L"Software", "HKCU\\Software\\", found);
  return found;
}

std::string difference(const registry_snapshot& before, const registry_snapshot& after) {
  std::string text;
  for (const auto& [key, value] : after) {
    const auto earlier = before.find(key);
    if (earlier != before.end() && earlier->second == value) continue;
    text += (earlier == before.end() ? "+ " : "~ ") + key + (value.empty() ? "" : " = " + value) + '\n';
  }
  for (const auto& [key, value] : before) {
    if (after.count(key) == 0) text += "- " + key + '\n';
  }
  return text;
}

}  // namespace ovtest
