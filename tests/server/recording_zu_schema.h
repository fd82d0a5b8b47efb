// A sibling's schema that says how it was called, and answers what the test wants.
#pragma once

#include "server/recorder.h"

namespace ovtest {

class recording_zu_schema final : public ovf::component_class<recording_zu_schema, IZuCommonDataSchema>,
                                  public recorder {
 public:
  static constexpr CLSID class_id = CLSID_OvSchema;

  HRESULT STDMETHODCALLTYPE get_TypeHint(OvFileType* pVal) override { return called("get_TypeHint", pVal); }
  HRESULT STDMETHODCALLTYPE Reserved1() override { return called("Reserved1"); }
  HRESULT STDMETHODCALLTYPE Reserved2() override { return called("Reserved2"); }
  HRESULT STDMETHODCALLTYPE Reserved3() override { return called("Reserved3"); }
  HRESULT STDMETHODCALLTYPE Reserved4() override { return called("Reserved4"); }
  HRESULT STDMETHODCALLTYPE Reserved5() override { return called("Reserved5"); }
  HRESULT STDMETHODCALLTYPE GetSchemaAsXML(BSTR* pVal) override { return called("GetSchemaAsXML", pVal); }
  HRESULT STDMETHODCALLTYPE SetSchemaUsingXML(BSTR newVal) override {
    return called("SetSchemaUsingXML", newVal);
  }
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
  HRESULT STDMETHODCALLTYPE AddColumn(BSTR name, OvColumnType type, LONG length) override {
    return called("AddColumn", name, type, length);
  }
  HRESULT STDMETHODCALLTYPE Reserved6() override { return called("Reserved6"); }
  HRESULT STDMETHODCALLTYPE GetFieldSize(LONG lIndex, LONG* pVal) override {
    return called("GetFieldSize", lIndex, pVal);
  }
  HRESULT STDMETHODCALLTYPE SetFieldSize(LONG lIndex, LONG newVal) override {
    return called("SetFieldSize", lIndex, newVal);
  }
  HRESULT STDMETHODCALLTYPE Reserved7() override { return called("Reserved7"); }
  HRESULT STDMETHODCALLTYPE Reserved8() override { return called("Reserved8"); }
};

}  // namespace ovtest
