// A record set that says how it was called, and answers what the test wants.
#pragma once

#include "server/recorder.h"

namespace ovtest {

class recording_table_ado final : public ovf::component_class<recording_table_ado, IOvTableADO>,
                                  public recorder {
 public:
  static constexpr CLSID class_id = CLSID_OvTableADO;

  HRESULT STDMETHODCALLTYPE get_Schema(IOvSchema** pVal) override { return called("get_Schema", pVal); }
  HRESULT STDMETHODCALLTYPE put_Schema(IOvSchema* newVal) override { return called("put_Schema", newVal); }
  HRESULT STDMETHODCALLTYPE get_Name(BSTR* pVal) override { return called("get_Name", pVal); }
  HRESULT STDMETHODCALLTYPE put_Name(BSTR newVal) override { return called("put_Name", newVal); }
  HRESULT STDMETHODCALLTYPE get_EOF(VARIANT_BOOL* pVal) override { return called("get_EOF", pVal); }
  HRESULT STDMETHODCALLTYPE get_BOF(VARIANT_BOOL* pVal) override { return called("get_BOF", pVal); }
  HRESULT STDMETHODCALLTYPE GetRowCount(LONG* pVal) override { return called("GetRowCount", pVal); }
  HRESULT STDMETHODCALLTYPE GetCurrentRow(LONG* pVal) override { return called("GetCurrentRow", pVal); }
  HRESULT STDMETHODCALLTYPE AddRow() override { return called("AddRow"); }
  HRESULT STDMETHODCALLTYPE DeleteRow(LONG lRow) override { return called("DeleteRow", lRow); }
  HRESULT STDMETHODCALLTYPE GetColumn(LONG index, VARIANT* val) override {
    return called("GetColumn", index, val);
  }
  HRESULT STDMETHODCALLTYPE SetColumn(LONG index, VARIANT val) override {
    return called("SetColumn", index, val);
  }
  HRESULT STDMETHODCALLTYPE MoveTo(LONG record) override { return called("MoveTo", record); }
  HRESULT STDMETHODCALLTYPE MoveFirst() override { return called("MoveFirst"); }
  HRESULT STDMETHODCALLTYPE MoveNext() override { return called("MoveNext"); }
  HRESULT STDMETHODCALLTYPE MoveLast() override { return called("MoveLast"); }
  HRESULT STDMETHODCALLTYPE MovePrevious() override { return called("MovePrevious"); }
  HRESULT STDMETHODCALLTYPE Open(BSTR filename, LONG ReadOnly) override {
    return called("Open", filename, ReadOnly);
  }
  HRESULT STDMETHODCALLTYPE Close() override { return called("Close"); }
  HRESULT STDMETHODCALLTYPE Create(BSTR filename, IDispatch* tableDefinition) override {
    return called("Create", filename, tableDefinition);
  }
  HRESULT STDMETHODCALLTYPE Update() override { return called("Update"); }
  HRESULT STDMETHODCALLTYPE SetNamedColumn(BSTR bsName, VARIANT val) override {
    return called("SetNamedColumn", bsName, val);
  }
  HRESULT STDMETHODCALLTYPE GetNamedColumn(BSTR bsName, VARIANT* val) override {
    return called("GetNamedColumn", bsName, val);
  }
};

}  // namespace ovtest
