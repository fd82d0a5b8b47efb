// Kinds of table, templates, the XML form, merging and the long field names are not there yet. Their
// methods say so and clear what they would hand out.
#include "schema/ov_schema.h"

namespace ovf {

namespace {

template <class Out>
HRESULT not_yet(Out* out) noexcept {
  if (out == nullptr) return E_POINTER;
  *out = Out{};
  return E_NOTIMPL;
}

}  // namespace

HRESULT COvSchema::get_TypeHint(OvFileType* pVal) { return not_yet(pVal); }

HRESULT COvSchema::CreateModelFile(double, double, double, double, double, double, LONG, LONG, LONG, LONG,
                                   LONG, LONG) {
  return E_NOTIMPL;
}

HRESULT COvSchema::CreatePointsFile() { return E_NOTIMPL; }

HRESULT COvSchema::CreateStringsFile() { return E_NOTIMPL; }

HRESULT COvSchema::CreateWfTriangleFile() { return E_NOTIMPL; }

HRESULT COvSchema::CreateWfPointFile() { return E_NOTIMPL; }

HRESULT COvSchema::CreateRegularGrid(double, double, double, double, double, double, LONG, LONG, LONG,
                                     VARIANT_BOOL) {
  return E_NOTIMPL;
}

HRESULT COvSchema::GetSchemaAsXML(BSTR* pVal) { return not_yet(pVal); }

HRESULT COvSchema::SetSchemaUsingXML(BSTR) { return E_NOTIMPL; }

HRESULT COvSchema::Merge(IOvSchema*, OvSchemaMergeMode) { return E_NOTIMPL; }

HRESULT COvSchema::get_FieldNameMaxLength(LONG* pVal) { return not_yet(pVal); }

HRESULT COvSchema::get_UseLongFieldNames(VARIANT_BOOL* pVal) { return not_yet(pVal); }

HRESULT COvSchema::get_UseLongFieldNamesMaster(VARIANT_BOOL* pVal) { return not_yet(pVal); }

HRESULT COvSchema::put_UseLongFieldNamesMaster(VARIANT_BOOL) { return E_NOTIMPL; }

}  // namespace ovf
