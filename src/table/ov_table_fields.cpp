#include "table/column_values.h"
#include "table/ov_table.h"
#include "table/schema_transfer.h"

namespace ovf {
namespace {

/// The engine's default as the file now has it, for the schema. `SetFieldDefault` widens a float tidily,
/// so that a schema of floats says 0.1 here until the table is opened anew and its fields are widened
/// plainly: hosts have always been shown both.
HRESULT take_default(IOvSchema* schema, LONG column, table& from) {
  if (schema == nullptr) return S_OK;
  return schema->SetFieldDefault(column, from.getDefaultValue(field_index(column)).get());
}

}  // namespace

template <class Body>
HRESULT COvTable::changing_fields(Body body) {
  if (core_.is_read_only()) return report(*this, message_id::read_only_file);
  return guard(*this, body);
}

template <class Body>
HRESULT COvTable::changing_field(LONG column, Body body) {
  // One text serves both refusals.
  if (column < 1) return report(*this, message_id::read_only_file);
  return changing_fields(body);
}

HRESULT COvTable::SetColumnName(LONG lIndex, BSTR newVal) {
  return changing_field(lIndex, [&] {
    table& opened = core_.opened();
    const wide wanted(view_of(newVal));
    opened.renameField(field_index(lIndex), wanted);
    if (core_.schema && opened.getFieldName(field_index(lIndex)) == wanted) {
      (void)core_.schema->SetFieldName(lIndex, newVal);
    }
  });
}

HRESULT COvTable::SetColumnDefaultFloat(LONG lIndex, float newVal) {
  return changing_field(lIndex, [&] {
    core_.opened().setDefaultFloat(field_index(lIndex), newVal);
    (void)take_default(core_.schema.get(), lIndex, core_.opened());
  });
}

HRESULT COvTable::SetColumnDefaultDouble(LONG lIndex, double newVal) {
  return changing_field(lIndex, [&] {
    core_.opened().setDefaultDouble(field_index(lIndex), newVal);
    (void)take_default(core_.schema.get(), lIndex, core_.opened());
  });
}

HRESULT COvTable::SetColumnDefaultString(LONG lIndex, BSTR newVal) {
  return changing_field(lIndex, [&] {
    core_.opened().setDefaultString(field_index(lIndex), wide(view_of(newVal)));
    (void)take_default(core_.schema.get(), lIndex, core_.opened());
  });
}

// The schema takes what was asked for; what the file made of it (rounded widths, cut texts, narrowed numbers)
// it has when the table is opened anew.

HRESULT COvTable::AddImplicitNumericColumnFloat(BSTR bstrName, float defaultValue) {
  return changing_fields([&] {
    core_.opened().addNumericField(wide(view_of(bstrName)), defaultValue);
    if (core_.schema) (void)core_.schema->AddNumericColumn(bstrName, static_cast<double>(defaultValue), 1);
  });
}

HRESULT COvTable::AddImplicitNumericColumnDouble(BSTR bstrName, double defaultValue) {
  return changing_fields([&] {
    core_.opened().addNumericField(wide(view_of(bstrName)), defaultValue);
    if (core_.schema) (void)core_.schema->AddNumericColumn(bstrName, defaultValue, 1);
  });
}

HRESULT COvTable::AddImplicitStringColumn(BSTR bstrName, LONG length, BSTR bstrDefaultValue) {
  return changing_fields([&] {
    core_.opened().addAlphaField(wide(view_of(bstrName)), length, wide(view_of(bstrDefaultValue)));
    if (core_.schema) (void)core_.schema->AddStringColumn(bstrName, length, bstrDefaultValue, 1);
  });
}

}  // namespace ovf
