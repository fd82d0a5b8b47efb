#include "table/repair_plan.h"

#include <algorithm>

#include "ovfile/smart.h"
#include "platform/variant.h"

namespace ovf {
namespace {

constexpr wide_view mismatched_types = OLESTR("Repair failed, mismatched field types");

LONG field_count(IOvSchema& schema) {
  LONG count = 0;
  throw_on_failure(schema.get_FieldCount(&count));
  return count;
}

OvColumnType type_of(IOvSchema& schema, LONG column) {
  OvColumnType type{};
  throw_on_failure(schema.GetFieldType(column, &type));
  return type;
}

column_origin origin_of(IOvSchema& held, IOvSchema& wanted, LONG column) {
  ovfile::text name;
  throw_on_failure(wanted.GetFieldName(column, name.out()));
  LONG found = 0;
  if (FAILED(held.GetFieldIndex(name.get(), &found)) || found < 1) found = 0;
  return {found};
}

bool is_needed(const std::vector<column_origin>& origins, LONG held_count) {
  std::vector<bool> kept(static_cast<std::size_t>(std::max<LONG>(held_count, 0)) + 1);
  bool added = false;
  for (const column_origin& origin : origins) {
    if (origin.column == 0) added = true;
    if (origin.column > 0 && origin.column <= held_count)
      kept[static_cast<std::size_t>(origin.column)] = true;
  }
  return added || std::find(kept.begin() + 1, kept.end(), false) != kept.end();
}

}  // namespace

std::optional<std::vector<column_origin>> repair_plan(IOvSchema& held, IOvSchema& wanted) {
  std::vector<column_origin> origins;
  const LONG count = field_count(wanted);
  for (LONG column = 1; column <= count; ++column) origins.push_back(origin_of(held, wanted, column));
  if (!is_needed(origins, field_count(held))) return std::nullopt;
  return origins;
}

void read_types(IOvSchema& wanted, std::span<column_origin> origins) {
  LONG column = 0;
  for (column_origin& origin : origins) {
    origin.type = type_of(wanted, ++column);
    if (origin.column > 0 && type_of(wanted, column) != origin.type) {
      throw MyExceptionClass(wide(mismatched_types));
    }
  }
}

}  // namespace ovf
