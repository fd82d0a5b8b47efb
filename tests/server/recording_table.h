// A table that says how it was called, and answers what the test wants.
#pragma once

#include "server/recorder.h"

namespace ovtest {

class recording_table final : public ovf::component_class<recording_table, IOvTable>, public recorder {
 public:
  static constexpr CLSID class_id = CLSID_OvTable;

  HRESULT STDMETHODCALLTYPE GetColumnAsDouble(LONG lIndex, double* pVal) override {
    return called("GetColumnAsDouble", lIndex, pVal);
  }
  HRESULT STDMETHODCALLTYPE GetColumnAsFloat(LONG lIndex, float* pVal) override {
    return called("GetColumnAsFloat", lIndex, pVal);
  }
  HRESULT STDMETHODCALLTYPE GetColumnAsString(LONG lIndex, BSTR* pVal) override {
    return called("GetColumnAsString", lIndex, pVal);
  }
  HRESULT STDMETHODCALLTYPE GetRowCount(LONG* pVal) override { return called("GetRowCount", pVal); }
  HRESULT STDMETHODCALLTYPE GetNextRow() override { return called("GetNextRow"); }
  HRESULT STDMETHODCALLTYPE GetColumn(LONG lIndex, VARIANT* pVal) override {
    return called("GetColumn", lIndex, pVal);
  }
  HRESULT STDMETHODCALLTYPE get_Schema(IOvSchema** pVal) override { return called("get_Schema", pVal); }
  HRESULT STDMETHODCALLTYPE put_Schema(IOvSchema* newVal) override { return called("put_Schema", newVal); }
  HRESULT STDMETHODCALLTYPE get_Name(BSTR* pVal) override { return called("get_Name", pVal); }
  HRESULT STDMETHODCALLTYPE put_Name(BSTR newVal) override { return called("put_Name", newVal); }
  HRESULT STDMETHODCALLTYPE AddRow() override { return called("AddRow"); }
  HRESULT STDMETHODCALLTYPE SetColumn(LONG lIndex, VARIANT newVal) override {
    return called("SetColumn", lIndex, newVal);
  }
  HRESULT STDMETHODCALLTYPE SetColumnDouble(LONG lIndex, double newVal) override {
    return called("SetColumnDouble", lIndex, newVal);
  }
  HRESULT STDMETHODCALLTYPE SetColumnFloat(LONG lIndex, float newVal) override {
    return called("SetColumnFloat", lIndex, newVal);
  }
  HRESULT STDMETHODCALLTYPE SetColumnString(LONG lIndex, BSTR newVal) override {
    return called("SetColumnString", lIndex, newVal);
  }
  HRESULT STDMETHODCALLTYPE GetFirstRow() override { return called("GetFirstRow"); }
  HRESULT STDMETHODCALLTYPE GetCurrentRow(LONG* pVal) override { return called("GetCurrentRow", pVal); }
  HRESULT STDMETHODCALLTYPE GetPreviousRow() override { return called("GetPreviousRow"); }
  HRESULT STDMETHODCALLTYPE GetLastRow() override { return called("GetLastRow"); }
  HRESULT STDMETHODCALLTYPE GetRowAt(LONG lIndex) override { return called("GetRowAt", lIndex); }
  HRESULT STDMETHODCALLTYPE Open(BSTR filename, LONG ReadOnly) override {
    return called("Open", filename, ReadOnly);
  }
  HRESULT STDMETHODCALLTYPE Close() override { return called("Close"); }
  HRESULT STDMETHODCALLTYPE Create(BSTR bsFilename, IDispatch* tableDefinition) override {
    return called("Create", bsFilename, tableDefinition);
  }
  HRESULT STDMETHODCALLTYPE get_EOF(VARIANT_BOOL* pVal) override { return called("get_EOF", pVal); }
  HRESULT STDMETHODCALLTYPE get_BOF(VARIANT_BOOL* pVal) override { return called("get_BOF", pVal); }
  HRESULT STDMETHODCALLTYPE ReadOVRecord(LONG* pBuffer) override { return called("ReadOVRecord", pBuffer); }
  HRESULT STDMETHODCALLTYPE DeleteRow(LONG lIndex) override { return called("DeleteRow", lIndex); }
  HRESULT STDMETHODCALLTYPE SetFilteredIn(LONG row) override { return called("SetFilteredIn", row); }
  HRESULT STDMETHODCALLTYPE SetFilteredOut(LONG row) override { return called("SetFilteredOut", row); }
  HRESULT STDMETHODCALLTYPE IsFilteredIn(LONG nMode, LONG row, VARIANT_BOOL* pbVal) override {
    return called("IsFilteredIn", nMode, row, pbVal);
  }
  HRESULT STDMETHODCALLTYPE IsFilteredOut(LONG nMode, LONG row, VARIANT_BOOL* pbVal) override {
    return called("IsFilteredOut", nMode, row, pbVal);
  }
  HRESULT STDMETHODCALLTYPE get_FilterString(LONG nMode, BSTR* pVal) override {
    return called("get_FilterString", nMode, pVal);
  }
  HRESULT STDMETHODCALLTYPE put_FilterString(LONG nMode, BSTR newVal) override {
    return called("put_FilterString", nMode, newVal);
  }
  HRESULT STDMETHODCALLTYPE GetColumnMin(LONG index, double* pVal) override {
    return called("GetColumnMin", index, pVal);
  }
  HRESULT STDMETHODCALLTYPE GetColumnMax(LONG index, double* pVal) override {
    return called("GetColumnMax", index, pVal);
  }
  HRESULT STDMETHODCALLTYPE FlushChanges() override { return called("FlushChanges"); }
  HRESULT STDMETHODCALLTYPE get_IsLinked(VARIANT_BOOL* pVal) override { return called("get_IsLinked", pVal); }
  HRESULT STDMETHODCALLTYPE Sort(LONG lIndex, VARIANT_BOOL bAscending) override {
    return called("Sort", lIndex, bAscending);
  }
  HRESULT STDMETHODCALLTYPE WriteOVRecord(LONG* pBuffer) override { return called("WriteOVRecord", pBuffer); }
  HRESULT STDMETHODCALLTYPE Repair(IOvSchema* pSchema) override { return called("Repair", pSchema); }
  HRESULT STDMETHODCALLTYPE GetLooseSignature(BSTR* pVal) override {
    return called("GetLooseSignature", pVal);
  }
  HRESULT STDMETHODCALLTYPE GetTightSignature(BSTR* pVal) override {
    return called("GetTightSignature", pVal);
  }
  HRESULT STDMETHODCALLTYPE GetSignature(VARIANT_BOOL ignoreDescription, VARIANT_BOOL ignoreFieldOrder,
                                         VARIANT_BOOL ignorePrecision, LONG nPtsAfterDecimal,
                                         BSTR* pVal) override {
    return called("GetSignature", ignoreDescription, ignoreFieldOrder, ignorePrecision, nPtsAfterDecimal,
                  pVal);
  }
  HRESULT STDMETHODCALLTYPE SetColumnDefaultFloat(LONG lIndex, float newVal) override {
    return called("SetColumnDefaultFloat", lIndex, newVal);
  }
  HRESULT STDMETHODCALLTYPE SetColumnDefaultDouble(LONG lIndex, double newVal) override {
    return called("SetColumnDefaultDouble", lIndex, newVal);
  }
  HRESULT STDMETHODCALLTYPE SetColumnName(LONG lIndex, BSTR newVal) override {
    return called("SetColumnName", lIndex, newVal);
  }
  HRESULT STDMETHODCALLTYPE SetColumnDefaultString(LONG lIndex, BSTR newVal) override {
    return called("SetColumnDefaultString", lIndex, newVal);
  }
  HRESULT STDMETHODCALLTYPE AddImplicitNumericColumnFloat(BSTR bstrName, float defaultValue) override {
    return called("AddImplicitNumericColumnFloat", bstrName, defaultValue);
  }
  HRESULT STDMETHODCALLTYPE AddImplicitNumericColumnDouble(BSTR bstrName, double defaultValue) override {
    return called("AddImplicitNumericColumnDouble", bstrName, defaultValue);
  }
  HRESULT STDMETHODCALLTYPE AddImplicitStringColumn(BSTR bstrName, LONG length,
                                                    BSTR bstrDefaultValue) override {
    return called("AddImplicitStringColumn", bstrName, length, bstrDefaultValue);
  }
  HRESULT STDMETHODCALLTYPE ReduceRowCountTo(LONG lRows) override {
    return called("ReduceRowCountTo", lRows);
  }
};

}  // namespace ovtest
