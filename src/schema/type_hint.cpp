#include "schema/type_hint.h"

#include <algorithm>
#include <string>

#include "ovfile/table_kinds.h"
#include "storage/format.h"

namespace ovf {

namespace {

/// A name as the dictionary of a table has it; a longer one stays as it is.
std::string padded(std::string_view name) {
  std::string text(name);
  if (text.size() < format::short_name_chars) text.resize(format::short_name_chars, ' ');
  return text;
}

/// A name with a blank of its own stands as it is, and no padded name equals it.
std::string wanted_text(std::string_view name) {
  return name.back() == ' ' ? std::string(name) : padded(name);
}

bool has_all(const std::vector<std::string>& names, const ovfile::table_kind& kind) {
  return std::ranges::all_of(kind.fields(), [&](std::string_view wanted) {
    return std::ranges::find(names, wanted_text(wanted)) != names.end();
  });
}

}  // namespace

OvFileType type_hint_of(const schema_fields& fields) {
  std::vector<std::string> names;
  names.reserve(fields.count());
  for (const schema_field& field : fields) names.push_back(padded(field.name));
  LONG hint = ovGenericTable;
  const auto* found = std::ranges::find_if(
      ovfile::table_kinds, [&](const ovfile::table_kind& kind) { return has_all(names, kind); });
  if (found != std::end(ovfile::table_kinds)) hint |= found->type;
  return static_cast<OvFileType>(hint);
}

}  // namespace ovf
