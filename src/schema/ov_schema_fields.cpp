#include "platform/decimal_tidy.h"
#include "platform/variant.h"
#include "schema/ov_schema.h"

namespace ovf {

namespace {

void store_numeric_default(schema_field& field, const VARIANT& value) {
  if (value.vt == VT_R4) {
    field.numeric_default = tidied(value.fltVal);
  } else if (value.vt == VT_R8) {
    field.numeric_default = value.dblVal;
  }
}

// A value that no text stands for is ignored, like a value of the wrong type for a number.
void store_text_default(schema_field& field, const VARIANT& value) {
  variant text;
  const HRESULT status = change_type(*text.out(), value, VT_BSTR);
  if (status == E_OUTOFMEMORY) throw std::bad_alloc();
  if (SUCCEEDED(status)) field.text_default = ansi_from_wide(view_of(text.get().bstrVal));
}

}  // namespace

template <class Out, class Read>
HRESULT COvSchema::read_field(LONG index, Out* out, Read read) {
  if (out == nullptr) return E_POINTER;
  *out = Out{};
  return guard(*this, [&]() -> HRESULT {
    const schema_field* field = fields_.readable(index);
    if (field == nullptr) return E_FAIL;
    *out = read(*field);
    return S_OK;
  });
}

template <class Write>
HRESULT COvSchema::write_field(LONG index, Write write) {
  return guard(*this, [&]() -> HRESULT {
    schema_field* field = fields_.writable(index);
    if (field == nullptr) return E_FAIL;
    write(*field);
    return S_OK;
  });
}

HRESULT COvSchema::GetFieldDefault(LONG lIndex, VARIANT* pVal) {
  return read_field(lIndex, pVal, [](const schema_field& field) {
    if (field.is_numeric()) return variant(field.numeric_default).release();
    return variant(wide_from_ansi(field.text_default)).release();
  });
}

HRESULT COvSchema::SetFieldDefault(LONG lIndex, VARIANT newVal) {
  return write_field(lIndex, [&](schema_field& field) {
    variant value;
    const HRESULT status = VariantCopyInd(value.out(), &newVal);
    if (status == E_OUTOFMEMORY) throw std::bad_alloc();
    if (FAILED(status)) return;
    if (field.is_numeric()) {
      store_numeric_default(field, value);
    } else {
      store_text_default(field, value);
    }
  });
}

HRESULT COvSchema::GetFieldOffset(LONG lIndex, LONG* pVal) {
  return read_field(lIndex, pVal, [](const schema_field& field) { return field.offset; });
}

HRESULT COvSchema::SetFieldOffset(LONG lIndex, LONG newVal) {
  return write_field(lIndex, [&](schema_field& field) { field.offset = newVal; });
}

HRESULT COvSchema::GetFieldName(LONG lIndex, BSTR* pVal) {
  return read_field(lIndex, pVal,
                    [](const schema_field& field) { return new_bstr(wide_from_ansi(field.name)); });
}

HRESULT COvSchema::SetFieldName(LONG lIndex, BSTR newVal) {
  if (read_only_) return E_FAIL;
  return write_field(lIndex, [&](schema_field& field) { field.name = ansi_from_wide(view_of(newVal)); });
}

HRESULT COvSchema::GetFieldType(LONG lIndex, OvColumnType* pVal) {
  return read_field(lIndex, pVal, [this](const schema_field& field) {
    if (field.is_text()) return ovColumnString;
    return is_double() ? ovColumnDouble : ovColumnSingle;
  });
}

HRESULT COvSchema::SetFieldType(LONG lIndex, OvColumnType newVal) {
  if (read_only_) return E_FAIL;
  return write_field(lIndex, [&](schema_field& field) {
    if (newVal == ovColumnSingle || newVal == ovColumnDouble) field.type = numeric_code;
    if (newVal == ovColumnString) field.type = text_code;
  });
}

HRESULT COvSchema::GetFieldSize(LONG lIndex, LONG* pVal) {
  return read_field(lIndex, pVal, [](const schema_field& field) { return field.size; });
}

HRESULT COvSchema::SetFieldSize(LONG lIndex, LONG newVal) {
  return write_field(lIndex, [&](schema_field& field) { field.size = newVal; });
}

HRESULT COvSchema::GetFieldSizeChars(LONG lIndex, LONG* pVal) {
  return read_field(lIndex, pVal,
                    [this](const schema_field& field) { return is_double() ? field.size / 2 : field.size; });
}

HRESULT COvSchema::IsFieldImplicit(LONG lIndex, VARIANT_BOOL* pVal) {
  // Hosts have always been given 1 here, not VARIANT_TRUE.
  return read_field(lIndex, pVal, [](const schema_field& field) {
    return static_cast<VARIANT_BOOL>(field.is_implicit() ? 1 : 0);
  });
}

HRESULT COvSchema::GetFieldIndex(BSTR name, LONG* pVal) {
  if (pVal == nullptr) return E_POINTER;
  *pVal = -1;
  return guard(*this, [&]() -> HRESULT {
    const std::size_t found = fields_.find(ansi_from_wide(view_of(name)));
    if (found == 0) return S_FALSE;
    *pVal = static_cast<LONG>(found);
    return S_OK;
  });
}

}  // namespace ovf
