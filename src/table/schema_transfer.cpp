#include "table/schema_transfer.h"

#include <algorithm>

#include "ovfile/smart.h"
#include "schema/ov_schema.h"
#include "schema/schema_field.h"
#include "schema/schema_filling.h"

namespace ovf {
namespace {

constexpr wide_view bad_field = OLESTR("The schema's field %s cannot be copied");

wide without_trailing_blanks(wide text) {
  text.erase(text.find_last_not_of(OLESTR(' ')) + 1);
  return text;
}

/// A text default fills the field's width, so that its words can be counted.
std::string padded_default(IOvSchema& schema, LONG index, const VARIANT& value) {
  LONG width = 0;
  throw_on_failure(schema.GetFieldSizeChars(index, &width));
  std::string text = ansi_from_wide(to_text(value));
  const auto characters = static_cast<std::size_t>(std::clamp<LONG>(width, 0, 4096));
  if (text.size() < characters) text.resize(characters, ' ');
  return text;
}

field_definition field_of(IOvSchema& schema, LONG index) {
  ovfile::text name;
  OvColumnType type{};
  LONG offset = 0;
  variant value;
  throw_on_failure(schema.GetFieldName(index, name.out()));
  throw_on_failure(schema.GetFieldType(index, &type));
  throw_on_failure(schema.GetFieldOffset(index, &offset));
  throw_on_failure(schema.GetFieldDefault(index, value.out()));
  field_definition field;
  field.name = name.view();
  field.implicit = offset == implicit_offset;
  if (type == ovColumnString) {
    field.kind = field_kind::alphanumeric;
    field.text_default = padded_default(schema, index, value);
  } else {
    field.number_default = to_double(value);
  }
  return field;
}

void copy_field(IOvSchema& from, LONG index, bool is_double, IOvSchema& to) {
  ovfile::text name;
  OvColumnType type{};
  VARIANT_BOOL implicit = VARIANT_FALSE;
  LONG bytes = 0;
  variant value;
  throw_on_failure(from.GetFieldName(index, name.out()));
  throw_on_failure(from.IsFieldImplicit(index, &implicit));
  throw_on_failure(from.GetFieldType(index, &type));
  throw_on_failure(from.GetFieldDefault(index, value.out()));
  const LONG is_implicit = implicit != VARIANT_FALSE ? 1 : 0;
  HRESULT status = S_OK;
  if (type != ovColumnString) {
    status = to.AddNumericColumn(name.get(), to_double(value), is_implicit);
  } else {
    throw_on_failure(from.GetFieldSize(index, &bytes));
    const ovfile::text text{wide_view(to_text(value))};
    status = to.AddStringColumn(name.get(), is_double ? bytes / 2 : bytes, text.get(), is_implicit);
  }
  // Without it the columns behind it would take each other's values.
  if (FAILED(status)) throw MyExceptionClass(wide_format(bad_field).arg(name.view()).text());
}

}  // namespace

HRESULT add_field(IOvSchema& schema, table& from, std::uint64_t index) {
  const ovfile::text name(wide_view(from.getFieldName(index)));
  const LONG implicit = from.isImplicit(index) ? 1 : 0;
  if (from.getFieldType(index) == field_kind::numeric) {
    return schema.AddNumericColumn(name.get(), to_double(from.getDefaultValue(index)), implicit);
  }
  const ovfile::text text(wide_view(from.getDefaultString(index)));
  return schema.AddStringColumn(name.get(), static_cast<LONG>(from.getFieldWidth(index)), text.get(),
                                implicit);
}

HRESULT fill_schema(IOvSchema& schema, table& from) {
  if (!begin_filling(schema)) return S_OK;
  HRESULT status = schema.put_DoublePrecisionFlag(from.isDouble() ? 1 : 0);
  const ovfile::text description(wide_view(without_trailing_blanks(from.getDescription())));
  if (SUCCEEDED(status)) status = schema.put_Description(description.get());
  const std::uint64_t count = from.getFieldCount();
  for (std::uint64_t i = 0; i < count && SUCCEEDED(status); ++i) status = add_field(schema, from, i);
  return status;
}

void require_field_limit(IOvSchema& schema) {
  VARIANT_BOOL is_double = VARIANT_FALSE;
  LONG count = 0;
  throw_on_failure(schema.get_DoublePrecisionFlag(&is_double));
  throw_on_failure(schema.get_FieldCount(&count));
  require_field_limit(is_double != VARIANT_FALSE, static_cast<std::uint64_t>(std::max<LONG>(count, 0)));
}

table_definition definition_of(IOvSchema& schema) {
  table_definition definition;
  VARIANT_BOOL is_double = VARIANT_FALSE;
  ovfile::text description;
  LONG count = 0;
  throw_on_failure(schema.get_DoublePrecisionFlag(&is_double));
  throw_on_failure(schema.get_Description(description.out()));
  throw_on_failure(schema.get_FieldCount(&count));
  definition.is_double = is_double != VARIANT_FALSE;
  definition.description = description.view();
  for (LONG i = 1; i <= count; ++i) definition.fields.push_back(field_of(schema, i));
  return definition;
}

ovfile::pointer<IOvSchema> new_schema() {
  void* made = nullptr;
  throw_on_failure(COvSchema::create(nullptr, IID_IOvSchema, &made));
  ovfile::pointer<IOvSchema> schema;
  *schema.out() = static_cast<IOvSchema*>(made);
  return schema;
}

ovfile::pointer<IOvSchema> schema_of(table& from) {
  auto schema = new_schema();
  throw_on_failure(fill_schema(*schema.get(), from));
  return schema;
}

ovfile::pointer<IOvSchema> copy_of(IOvSchema& schema) {
  auto copy = new_schema();
  ovfile::text description;
  VARIANT_BOOL latched = VARIANT_FALSE;
  VARIANT_BOOL is_double = VARIANT_FALSE;
  LONG count = 0;
  throw_on_failure(schema.get_Description(description.out()));
  throw_on_failure(schema.get_ReadOnly(&latched));
  throw_on_failure(schema.get_DoublePrecisionFlag(&is_double));
  throw_on_failure(schema.get_FieldCount(&count));
  throw_on_failure(copy->put_Description(description.get()));
  throw_on_failure(copy->put_DoublePrecisionFlag(is_double != VARIANT_FALSE ? 1 : 0));
  for (LONG i = 1; i <= count; ++i) copy_field(schema, i, is_double != VARIANT_FALSE, *copy.get());
  // Last, since a latched schema takes no fields.
  if (latched != VARIANT_FALSE) throw_on_failure(copy->put_ReadOnly(VARIANT_TRUE));
  return copy;
}

}  // namespace ovf
