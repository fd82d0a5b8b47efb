// Folds the fields of another schema, which may be any component's, into this one. What the single calls
// answer is not looked at: a field that cannot be read or is refused stays as far as it came.
#include <algorithm>

#include "ovfile/smart.h"
#include "platform/variant.h"
#include "schema/ov_schema.h"

namespace ovf {

namespace {

constexpr bool is_number(OvColumnType type) noexcept {
  return type == ovColumnSingle || type == ovColumnDouble;
}

/// A field as the other schema tells of it.
struct foreign_field {
  ovfile::text name;
  OvColumnType type{};
  LONG size = 0;
  LONG offset = 0;
  variant value;

  foreign_field(IOvSchema& schema, LONG index) {
    only_memory_counts(schema.GetFieldName(index, name.out()));
    schema.GetFieldType(index, &type);
    schema.GetFieldSize(index, &size);
    schema.GetFieldOffset(index, &offset);
    only_memory_counts(schema.GetFieldDefault(index, value.out()));
  }

  LONG implicit() const noexcept { return offset == implicit_offset ? 1 : 0; }

  /// The default as a number, widened plainly; 0 for what is none.
  double number() const {
    variant changed;
    only_memory_counts(change_type(*changed.out(), value.get(), VT_R8));
    return changed.type() == VT_R8 ? changed.get().dblVal : 0.0;
  }
  /// The default as a text of `width` characters, or as it is when no field is that wide.
  wide text(LONG width) const {
    variant changed;
    only_memory_counts(change_type(*changed.out(), value.get(), VT_BSTR));
    wide result(changed.type() == VT_BSTR ? view_of(changed.get().bstrVal) : wide_view());
    if (width >= 0 && width <= widest_text) result.resize(static_cast<std::size_t>(width), OLESTR(' '));
    return result;
  }
};

/// Overwrites field `index` of `schema`.
void overwrite(IOvSchema& schema, LONG index, const foreign_field& field, LONG width) {
  schema.SetFieldType(index, field.type);
  schema.SetFieldSize(index, field.size);
  schema.SetFieldOffset(index, field.offset);
  if (is_number(field.type)) {
    only_memory_counts(schema.SetFieldDefault(index, field.value.get()));
  } else if (field.type == ovColumnString) {
    const variant text(wide_view(field.text(width)));
    only_memory_counts(schema.SetFieldDefault(index, text.get()));
  }
}

void append(IOvSchema& schema, const foreign_field& field, LONG width) {
  if (is_number(field.type)) {
    only_memory_counts(schema.AddNumericColumn(field.name.get(), field.number(), field.implicit()));
  } else if (field.type == ovColumnString) {
    const ovfile::text text(wide_view(field.text(width)));
    only_memory_counts(schema.AddStringColumn(field.name.get(), width, text.get(), field.implicit()));
  }
}

}  // namespace

void COvSchema::check_mergeable(IOvSchema* other) const {
  if (other == nullptr) throw MyExceptionClass(OLESTR("Merge failed, invalid input"));
  VARIANT_BOOL flag = VARIANT_FALSE;
  other->get_DoublePrecisionFlag(&flag);
  // The flag as it was given: a 2 is no schema's match.
  if ((flag != 0 ? 1 : 0) != double_precision_) {
    throw MyExceptionClass(OLESTR("Merge failed, precision of both schemas should match"));
  }
}

HRESULT COvSchema::Merge(IOvSchema* pSchema, OvSchemaMergeMode Mode) {
  check_mergeable(pSchema);
  return guard(*this, [&] {
    LONG count = 0;
    pSchema->get_FieldCount(&count);
    for (LONG i = 0; i < count; ++i) {
      const foreign_field field(*pSchema, i + 1);
      const LONG width = double_precision_ == 1 ? field.size / 2 : field.size;
      LONG index = 0;
      if (GetFieldIndex(field.name.get(), &index) == S_OK) {
        overwrite(*this, index, field, width);
      } else if (Mode == ovSchemaMergeModeAll) {
        append(*this, field, width);
      }
    }
  });
}

}  // namespace ovf
