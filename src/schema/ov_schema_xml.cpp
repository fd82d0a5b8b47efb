#include "schema/ov_schema.h"
#include "schema/schema_xml_reader.h"
#include "schema/schema_xml_writer.h"

namespace ovf {

HRESULT COvSchema::GetSchemaAsXML(BSTR* pVal) {
  if (pVal == nullptr) return E_FAIL;
  *pVal = nullptr;
  return guard(*this, [&]() -> HRESULT {
    const std::optional<wide> text = schema_as_xml(fields_, description_, is_double());
    if (!text) return E_FAIL;
    *pVal = new_bstr(*text);
    return S_OK;
  });
}

HRESULT COvSchema::SetSchemaUsingXML(BSTR newVal) {
  if (read_only_) return E_FAIL;
  return guard(*this, [&] {
    fields_.clear();
    description_.clear();
    type_hint_ = ovNothing;
    double_precision_ = 1;
    read_schema_xml(view_of(newVal), *this);
  });
}

}  // namespace ovf
