#include "engine/long_field_names.h"

#include "platform/atoms.h"
#include "platform/registry.h"
#include "storage/format.h"

namespace ovf {
namespace {

constexpr wide_view session_mark = OLESTR("MaxFieldNameLength");
constexpr wide_view master_value = OLESTR("UseLongFieldNamesMaster");
constexpr wide_view current_value = OLESTR("UseLongFieldNamesCurrent");

registry_key settings() { return {registry_root::current_user, OLESTR("Software\\Orvexa\\OvFile")}; }

bool read(wide_view name) { return registry_number(settings(), name).value_or(0) != 0; }

bool write(wide_view name, bool value) { return set_registry_number(settings(), name, value ? 1 : 0); }

std::size_t latched_limit() {
  const std::size_t limit = session_uses_long_names() ? format::long_name_chars : format::short_name_chars;
  if (!global_atom_exists(session_mark)) add_global_atom(session_mark);
  return limit;
}

}  // namespace

std::size_t field_name_limit() {
  static const std::size_t limit = latched_limit();
  return limit;
}

bool session_uses_long_names() {
  if (global_atom_exists(session_mark)) return read(current_value);
  const bool use = long_names_master();
  // Where it cannot be written, this process goes by the master all the same; once the session is marked,
  // the others find what was latched before, or no choice.
  write(current_value, use);
  return use;
}

bool long_names_master() { return read(master_value); }

bool set_long_names_master(bool use) { return write(master_value, use); }

}  // namespace ovf
