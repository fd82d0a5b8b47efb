#include "platform/registry.h"

namespace ovf {

namespace {

HKEY root_of(registry_root root) {
  return root == registry_root::classes ? HKEY_CLASSES_ROOT : HKEY_CURRENT_USER;
}

bool worked(LSTATUS status) {
  SetLastError(static_cast<DWORD>(status));
  return status == ERROR_SUCCESS;
}

/// An open key that closes itself.
class opened_key {
 public:
  opened_key() = default;
  opened_key(const opened_key&) = delete;
  opened_key& operator=(const opened_key&) = delete;
  ~opened_key() {
    if (key_ != nullptr) RegCloseKey(key_);
  }
  bool open(const registry_key& key) {
    return worked(RegOpenKeyExW(root_of(key.root), key.path.c_str(), 0, KEY_READ, &key_));
  }
  bool make(const registry_key& key) {
    return worked(RegCreateKeyExW(root_of(key.root), key.path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                  KEY_READ | KEY_WRITE, nullptr, &key_, nullptr));
  }
  HKEY get() const { return key_; }

 private:
  HKEY key_ = nullptr;
};

bool set_value(const registry_change& change, DWORD type, const void* bytes, std::size_t size) {
  opened_key key;
  return key.make(change.key) &&
         worked(RegSetValueExW(key.get(), change.name.c_str(), 0, type, static_cast<const BYTE*>(bytes),
                               static_cast<DWORD>(size)));
}

bool delete_tree(const registry_key& key) {
  const LSTATUS status = RegDeleteTreeW(root_of(key.root), key.path.c_str());
  return worked(status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status);
}

/// Whether a key is there that has no keys below it.
bool is_leaf(const registry_key& key) {
  opened_key opened;
  DWORD below = 0;
  return opened.open(key) &&
         RegQueryInfoKeyW(opened.get(), nullptr, nullptr, nullptr, &below, nullptr, nullptr, nullptr, nullptr,
                          nullptr, nullptr, nullptr) == ERROR_SUCCESS &&
         below == 0;
}

bool make_change(const registry_change& change) {
  using action = registry_change::action;
  // An empty path would mean the root itself.
  if (change.key.path.empty()) return worked(ERROR_INVALID_PARAMETER);
  switch (change.what) {
    case action::make_key:
      return opened_key().make(change.key);
    case action::set_number:
      return set_value(change, REG_DWORD, &change.number, sizeof change.number);
    case action::set_text:
      return set_value(change, REG_SZ, change.text.c_str(), (change.text.size() + 1) * sizeof(wchar_t));
    case action::delete_tree:
      return delete_tree(change.key);
    case action::delete_leaf:
      return !is_leaf(change.key) || delete_tree(change.key);
  }
  return false;
}

}  // namespace

std::optional<std::uint32_t> registry_number(const registry_key& key, wide_view name) {
  opened_key opened;
  if (!opened.open(key)) return {};
  std::uint32_t number = 0;
  DWORD type = 0;
  DWORD size = sizeof number;
  const LSTATUS status = RegQueryValueExW(opened.get(), wide(name).c_str(), nullptr, &type,
                                          reinterpret_cast<BYTE*>(&number), &size);
  if (!worked(status) || type != REG_DWORD || size != sizeof number) return {};
  return number;
}

std::optional<wide> registry_text(const registry_key& key, wide_view name) {
  opened_key opened;
  if (!opened.open(key)) return {};
  const wide value(name);
  DWORD type = 0;
  DWORD size = 0;
  if (!worked(RegQueryValueExW(opened.get(), value.c_str(), nullptr, &type, nullptr, &size)) ||
      type != REG_SZ) {
    return {};
  }
  wide text(size / sizeof(wchar_t) + 1, L'\0');
  size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
  if (!worked(RegQueryValueExW(opened.get(), value.c_str(), nullptr, &type,
                               reinterpret_cast<BYTE*>(text.data()), &size)) ||
      type != REG_SZ) {
    return {};
  }
  text.resize(size / sizeof(wchar_t));
  // The end mark is stored with the text, or was forgotten.
  text.resize(text.find(L'\0') == wide::npos ? text.size() : text.find(L'\0'));
  return text;
}

bool registry_key_exists(const registry_key& key) { return opened_key().open(key); }

bool change_registry(const std::vector<registry_change>& changes) {
  for (const registry_change& change : changes) {
    if (!make_change(change)) return false;
  }
  return true;
}

}  // namespace ovf
