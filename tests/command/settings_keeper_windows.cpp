#include <windows.h>
// windows.h goes first.
#include <optional>

#include "command/settings_keeper.h"

namespace ovtest {
namespace {

constexpr const wchar_t* key_name = L"Software\\Orvexa\\OvFile";
constexpr const wchar_t* master = L"UseLongFieldNamesMaster";
constexpr const wchar_t* current = L"UseLongFieldNamesCurrent";
constexpr const wchar_t* mark = L"MaxFieldNameLength";

std::optional<DWORD> read_value(const wchar_t* name) {
  DWORD value = 0;
  DWORD size = sizeof value;
  if (RegGetValueW(HKEY_CURRENT_USER, key_name, name, RRF_RT_REG_DWORD, nullptr, &value, &size) != 0)
    return {};
  return value;
}

void write_value(const wchar_t* name, const std::optional<DWORD>& value) {
  if (value) {
    RegSetKeyValueW(HKEY_CURRENT_USER, key_name, name, REG_DWORD, &*value, sizeof *value);
  } else {
    RegDeleteKeyValueW(HKEY_CURRENT_USER, key_name, name);
  }
}

}  // namespace

struct settings_keeper::state {
  std::optional<DWORD> master;
  std::optional<DWORD> current;
  bool marked;
};

settings_keeper::settings_keeper()
    : before_(new state{read_value(master), read_value(current), is_marked()}) {
  if (!before_->marked) GlobalAddAtomW(mark);
  write_value(master, {});
  write_value(current, {});
}

settings_keeper::~settings_keeper() {
  write_value(master, before_->master);
  write_value(current, before_->current);
  if (!before_->marked) unmark();
  if (before_->marked && !is_marked()) GlobalAddAtomW(mark);
  delete before_;
}

void settings_keeper::unmark() {
  while (const ATOM atom = GlobalFindAtomW(mark)) GlobalDeleteAtom(atom);
}

bool settings_keeper::is_marked() { return GlobalFindAtomW(mark) != 0; }

}  // namespace ovtest
