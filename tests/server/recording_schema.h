// A schema that says how it was called, and answers what the test wants.
#pragma once

#include "server/recorder.h"

namespace ovtest {

class recording_schema final : public ovf::component_class<recording_schema, IOvSchema>, public recorder {
 public:
  static constexpr CLSID class_id = CLSID_OvSchema;

  HRESULT STDMETHODCALLTYPE get_TypeHint(OvFileType* pVal) override { return called("get_TypeHint", pVal); }
  HRESULT STDMETHODCALLTYPE GetFieldDefault(LONG lIndex, VARIANT* pVal) override {
    return called("GetFieldDefault", lIndex, pVal);
  }
  HRESULT STDMETHODCALLTYPE SetFieldDefault(LONG lIndex, VARIANT newVal) override {
    return called("SetFieldDefault", lIndex, newVal);
  }
  HRESULT STDMETHODCALLTYPE GetFieldOffset(LONG lIndex, LONG* pVal) override {
    return called("GetFieldOffset", lIndex, pVal);
  }
  HRESULT STDMETHODCALLTYPE SetFieldOffset(LONG lIndex, LONG newVal) override {
    return called("SetFieldOffset", lIndex, newVal);
  }
  HRESULT STDMETHODCALLTYPE get_ReadOnly(VARIANT_BOOL* pVal) override { return called("get_ReadOnly", pVal); }
  HRESULT STDMETHODCALLTYPE put_ReadOnly(VARIANT_BOOL newVal) override {
    return called("put_ReadOnly", newVal);
  }
  HRESULT STDMETHODCALLTYPE get_FieldCount(LONG* pVal) override { return called("get_FieldCount", pVal); }
  HRESULT STDMETHODCALLTYPE put_FieldCount(LONG newVal) override { return called("put_FieldCount", newVal); }
  HRESULT STDMETHODCALLTYPE GetFieldName(LONG lIndex, BSTR* pVal) override {
    return called("GetFieldName", lIndex, pVal);
  }
  HRESULT STDMETHODCALLTYPE SetFieldName(LONG lIndex, BSTR newVal) override {
    return called("SetFieldName", lIndex, newVal);
  }
  HRESULT STDMETHODCALLTYPE GetFieldType(LONG lIndex, OvColumnType* pVal) override {
    return called("GetFieldType", lIndex, pVal);
  }
  HRESULT STDMETHODCALLTYPE SetFieldType(LONG lIndex, OvColumnType newVal) override {
    return called("SetFieldType", lIndex, newVal);
  }
  HRESULT STDMETHODCALLTYPE GetFieldIndex(BSTR name, LONG* pVal) override {
    return called("GetFieldIndex", name, pVal);
  }
  HRESULT STDMETHODCALLTYPE get_Description(BSTR* pVal) override { return called("get_Description", pVal); }
  HRESULT STDMETHODCALLTYPE put_Description(BSTR newVal) override {
    return called("put_Description", newVal);
  }
  HRESULT STDMETHODCALLTYPE AddColumn(BSTR name, OvColumnType type) override {
    return called("AddColumn", name, type);
  }
  HRESULT STDMETHODCALLTYPE GetFieldSize(LONG lIndex, LONG* pVal) override {
    return called("GetFieldSize", lIndex, pVal);
  }
  HRESULT STDMETHODCALLTYPE SetFieldSize(LONG lIndex, LONG newVal) override {
    return called("SetFieldSize", lIndex, newVal);
  }
  HRESULT STDMETHODCALLTYPE AddStringColumn(BSTR name, LONG length, BSTR defaultValue,
                                            LONG implicit) override {
    return called("AddStringColumn", name, length, defaultValue, implicit);
  }
  HRESULT STDMETHODCALLTYPE AddNumericColumn(BSTR name, double defaultValue, LONG implicit) override {
    return called("AddNumericColumn", name, defaultValue, implicit);
  }
  HRESULT STDMETHODCALLTYPE get_DoublePrecisionFlag(VARIANT_BOOL* pVal) override {
    return called("get_DoublePrecisionFlag", pVal);
  }
  HRESULT STDMETHODCALLTYPE put_DoublePrecisionFlag(LONG newVal) override {
    return called("put_DoublePrecisionFlag", newVal);
  }
  HRESULT STDMETHODCALLTYPE CreateModelFile(double dXINC, double dYINC, double dZINC, double dXMORIG,
                                            double dYMORIG, double dZMORIG, LONG Imin, LONG Imax, LONG Jmin,
                                            LONG Jmax, LONG Kmin, LONG Kmax) override {
    return called("CreateModelFile", dXINC, dYINC, dZINC, dXMORIG, dYMORIG, dZMORIG, Imin, Imax, Jmin, Jmax,
                  Kmin, Kmax);
  }
  HRESULT STDMETHODCALLTYPE CreatePointsFile() override { return called("CreatePointsFile"); }
  HRESULT STDMETHODCALLTYPE CreateStringsFile() override { return called("CreateStringsFile"); }
  HRESULT STDMETHODCALLTYPE CreateWfTriangleFile() override { return called("CreateWfTriangleFile"); }
  HRESULT STDMETHODCALLTYPE CreateWfPointFile() override { return called("CreateWfPointFile"); }
  HRESULT STDMETHODCALLTYPE IsFieldImplicit(LONG lIndex, VARIANT_BOOL* pVal) override {
    return called("IsFieldImplicit", lIndex, pVal);
  }
  HRESULT STDMETHODCALLTYPE GetFieldSizeChars(LONG lIndex, LONG* pVal) override {
    return called("GetFieldSizeChars", lIndex, pVal);
  }
  HRESULT STDMETHODCALLTYPE get_SpecialValueAbsent(VARIANT* pVal) override {
    return called("get_SpecialValueAbsent", pVal);
  }
  HRESULT STDMETHODCALLTYPE get_SpecialValueTrace(VARIANT* pVal) override {
    return called("get_SpecialValueTrace", pVal);
  }
  HRESULT STDMETHODCALLTYPE get_SpecialValueBottom(VARIANT* pVal) override {
    return called("get_SpecialValueBottom", pVal);
  }
  HRESULT STDMETHODCALLTYPE get_SpecialValueTop(VARIANT* pVal) override {
    return called("get_SpecialValueTop", pVal);
  }
  HRESULT STDMETHODCALLTYPE CreateRegularGrid(double dXINC, double dYINC, double dZINC, double dXMORIG,
                                              double dYMORIG, double dZMORIG, LONG Imax, LONG Jmax, LONG Kmax,
                                              VARIANT_BOOL bIJK) override {
    return called("CreateRegularGrid", dXINC, dYINC, dZINC, dXMORIG, dYMORIG, dZMORIG, Imax, Jmax, Kmax,
                  bIJK);
  }
  HRESULT STDMETHODCALLTYPE get_DoublePrecision(VARIANT_BOOL* pVal) override {
    return called("get_DoublePrecision", pVal);
  }
  HRESULT STDMETHODCALLTYPE put_DoublePrecision(VARIANT_BOOL newVal) override {
    return called("put_DoublePrecision", newVal);
  }
  HRESULT STDMETHODCALLTYPE GetSchemaAsXML(BSTR* pVal) override { return called("GetSchemaAsXML", pVal); }
  HRESULT STDMETHODCALLTYPE SetSchemaUsingXML(BSTR newVal) override {
    return called("SetSchemaUsingXML", newVal);
  }
  HRESULT STDMETHODCALLTYPE Merge(IOvSchema* pSchema, OvSchemaMergeMode Mode) override {
    return called("Merge", pSchema, Mode);
  }
  HRESULT STDMETHODCALLTYPE get_FieldNameMaxLength(LONG* pVal) override {
    return called("get_FieldNameMaxLength", pVal);
  }
  HRESULT STDMETHODCALLTYPE get_UseLongFieldNames(VARIANT_BOOL* pVal) override {
    return called("get_UseLongFieldNames", pVal);
  }
  HRESULT STDMETHODCALLTYPE get_UseLongFieldNamesMaster(VARIANT_BOOL* pVal) override {
    return called("get_UseLongFieldNamesMaster", pVal);
  }
  HRESULT STDMETHODCALLTYPE put_UseLongFieldNamesMaster(VARIANT_BOOL newVal) override {
    return called("put_UseLongFieldNamesMaster", newVal);
  }
};

}  // namespace ovtest
