// A schema of somebody else's: it answers what `Merge` and `Repair` ask, with defaults of any type, no more.
#pragma once

#include <vector>

#include "support/component.h"

namespace ovtest {

struct foreign_field {
  const char* name;
  OvColumnType type;
  LONG size;
  LONG offset;
  variant value;
};

/// Lives on the stack; references are not counted.
class foreign_schema final : public IOvSchema {
 public:
  explicit foreign_schema(std::vector<foreign_field> fields) : fields_(std::move(fields)) {}

  bool failing = false;    ///< every question but the count fails
  bool is_double = false;  ///< its precision
  int types_told = 0;      ///< how often it was asked for a type
  int true_types = -1;     ///< after so many one is told to be of texts; -1: never

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** out) override {
    *out = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                   UINT*) override {
    return E_NOTIMPL;
  }

  HRESULT STDMETHODCALLTYPE get_DoublePrecisionFlag(VARIANT_BOOL* pVal) override {
    return answer([&] { *pVal = is_double ? VARIANT_TRUE : VARIANT_FALSE; });
  }
  HRESULT STDMETHODCALLTYPE get_Description(BSTR* pVal) override {
    return answer([&] { *pVal = bstr("foreign").release(); });
  }
  HRESULT STDMETHODCALLTYPE get_ReadOnly(VARIANT_BOOL* pVal) override {
    return answer([&] { *pVal = VARIANT_FALSE; });
  }
  HRESULT STDMETHODCALLTYPE IsFieldImplicit(LONG lIndex, VARIANT_BOOL* pVal) override {
    return answer([&] { *pVal = field(lIndex).offset < 0 ? VARIANT_TRUE : VARIANT_FALSE; });
  }
  HRESULT STDMETHODCALLTYPE GetFieldSizeChars(LONG lIndex, LONG* pVal) override {
    return answer([&] { *pVal = field(lIndex).size / (is_double ? 2 : 1); });
  }
  HRESULT STDMETHODCALLTYPE get_FieldCount(LONG* pVal) override {
    *pVal = static_cast<LONG>(fields_.size());
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetFieldName(LONG lIndex, BSTR* pVal) override {
    return answer([&] { *pVal = bstr(field(lIndex).name).release(); });
  }
  HRESULT STDMETHODCALLTYPE GetFieldType(LONG lIndex, OvColumnType* pVal) override {
    return answer([&] { *pVal = types_told++ == true_types ? ovColumnString : field(lIndex).type; });
  }
  HRESULT STDMETHODCALLTYPE GetFieldSize(LONG lIndex, LONG* pVal) override {
    return answer([&] { *pVal = field(lIndex).size; });
  }
  HRESULT STDMETHODCALLTYPE GetFieldOffset(LONG lIndex, LONG* pVal) override {
    return answer([&] { *pVal = field(lIndex).offset; });
  }
  HRESULT STDMETHODCALLTYPE GetFieldDefault(LONG lIndex, VARIANT* pVal) override {
    return answer([&] { VariantCopy(pVal, const_cast<VARIANT*>(&field(lIndex).value.get())); });
  }

  // The rest is not asked.
  HRESULT STDMETHODCALLTYPE get_TypeHint(OvFileType*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetFieldDefault(LONG, VARIANT) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetFieldOffset(LONG, LONG) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_ReadOnly(VARIANT_BOOL) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_FieldCount(LONG) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetFieldName(LONG, BSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetFieldType(LONG, OvColumnType) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetFieldIndex(BSTR, LONG*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_Description(BSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE AddColumn(BSTR, OvColumnType) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetFieldSize(LONG, LONG) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE AddStringColumn(BSTR, LONG, BSTR, LONG) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE AddNumericColumn(BSTR, double, LONG) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_DoublePrecisionFlag(LONG) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE CreateModelFile(double, double, double, double, double, double, LONG, LONG, LONG,
                                            LONG, LONG, LONG) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE CreatePointsFile() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE CreateStringsFile() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE CreateWfTriangleFile() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE CreateWfPointFile() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_SpecialValueAbsent(VARIANT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_SpecialValueTrace(VARIANT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_SpecialValueBottom(VARIANT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_SpecialValueTop(VARIANT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE CreateRegularGrid(double, double, double, double, double, double, LONG, LONG,
                                              LONG, VARIANT_BOOL) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE get_DoublePrecision(VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_DoublePrecision(VARIANT_BOOL) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetSchemaAsXML(BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetSchemaUsingXML(BSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Merge(IOvSchema*, OvSchemaMergeMode) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_FieldNameMaxLength(LONG*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_UseLongFieldNames(VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE get_UseLongFieldNamesMaster(VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE put_UseLongFieldNamesMaster(VARIANT_BOOL) override { return E_NOTIMPL; }

 private:
  const foreign_field& field(LONG index) const { return fields_.at(static_cast<std::size_t>(index) - 1); }
  template <class Fill>
  HRESULT answer(Fill fill) const {
    if (failing) return E_FAIL;
    fill();
    return S_OK;
  }

  std::vector<foreign_field> fields_;
};

}  // namespace ovtest
