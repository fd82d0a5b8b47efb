// A sibling's table that says how it was called, and answers what the test wants.
#pragma once

#include "server/recorder.h"

namespace ovtest {

class recording_zu_table final : public ovf::component_class<recording_zu_table, IZuCommonDataTable>,
                                 public recorder {
 public:
  static constexpr CLSID class_id = CLSID_OvTable;

  HRESULT STDMETHODCALLTYPE Reserved1() override { return called("Reserved1"); }
  HRESULT STDMETHODCALLTYPE Reserved2() override { return called("Reserved2"); }
  HRESULT STDMETHODCALLTYPE GetColumnAsDouble(LONG lIndex, double* pVal) override {
    return called("GetColumnAsDouble", lIndex, pVal);
  }
  HRESULT STDMETHODCALLTYPE GetColumnAsFloat(LONG lIndex, float* pVal) override {
    return called("GetColumnAsFloat", lIndex, pVal);
  }
  HRESULT STDMETHODCALLTYPE Reserved3() override { return called("Reserved3"); }
  HRESULT STDMETHODCALLTYPE Reserved4() override { return called("Reserved4"); }
  HRESULT STDMETHODCALLTYPE GetColumnAsString(LONG lIndex, BSTR* pVal) override {
    return called("GetColumnAsString", lIndex, pVal);
  }
  HRESULT STDMETHODCALLTYPE GetRowCount(LONG* pVal) override { return called("GetRowCount", pVal); }
  HRESULT STDMETHODCALLTYPE GetNextRow() override { return called("GetNextRow"); }
  HRESULT STDMETHODCALLTYPE GetColumn(LONG lIndex, VARIANT* pVal) override {
    return called("GetColumn", lIndex, pVal);
  }
  HRESULT STDMETHODCALLTYPE Reserved5() override { return called("Reserved5"); }
  HRESULT STDMETHODCALLTYPE Reserved6(IZuCommonDataSchema** pVal) override {
    return called("Reserved6", pVal);
  }
  HRESULT STDMETHODCALLTYPE Reserved7() override { return called("Reserved7"); }
  HRESULT STDMETHODCALLTYPE get_Name(BSTR* pVal) override { return called("get_Name", pVal); }
  HRESULT STDMETHODCALLTYPE put_Name(BSTR newVal) override { return called("put_Name", newVal); }
  HRESULT STDMETHODCALLTYPE AddRow() override { return called("AddRow"); }
  HRESULT STDMETHODCALLTYPE SetColumn(LONG lIndex, VARIANT newVal) override {
    return called("SetColumn", lIndex, newVal);
  }
  HRESULT STDMETHODCALLTYPE Reserved8() override { return called("Reserved8"); }
  HRESULT STDMETHODCALLTYPE Reserved9() override { return called("Reserved9"); }
  HRESULT STDMETHODCALLTYPE SetColumnDouble(LONG lIndex, double newVal) override {
    return called("SetColumnDouble", lIndex, newVal);
  }
  HRESULT STDMETHODCALLTYPE SetColumnFloat(LONG lIndex, float newVal) override {
    return called("SetColumnFloat", lIndex, newVal);
  }
  HRESULT STDMETHODCALLTYPE Reserved10() override { return called("Reserved10"); }
  HRESULT STDMETHODCALLTYPE Reserved11() override { return called("Reserved11"); }
  HRESULT STDMETHODCALLTYPE SetColumnString(LONG lIndex, BSTR newVal) override {
    return called("SetColumnString", lIndex, newVal);
  }
  HRESULT STDMETHODCALLTYPE GetFirstRow() override { return called("GetFirstRow"); }
  HRESULT STDMETHODCALLTYPE Reserved12() override { return called("Reserved12"); }
  HRESULT STDMETHODCALLTYPE Reserved13() override { return called("Reserved13"); }
  HRESULT STDMETHODCALLTYPE Reserved14() override { return called("Reserved14"); }
  HRESULT STDMETHODCALLTYPE Reserved15() override { return called("Reserved15"); }
  HRESULT STDMETHODCALLTYPE Reserved16() override { return called("Reserved16"); }
  HRESULT STDMETHODCALLTYPE Reserved17() override { return called("Reserved17"); }
  HRESULT STDMETHODCALLTYPE Reserved18() override { return called("Reserved18"); }
  HRESULT STDMETHODCALLTYPE Reserved19() override { return called("Reserved19"); }
  HRESULT STDMETHODCALLTYPE Reserved20() override { return called("Reserved20"); }
  HRESULT STDMETHODCALLTYPE Reserved21() override { return called("Reserved21"); }
  HRESULT STDMETHODCALLTYPE ReadOVRecord(LONG* pBuffer) override { return called("ReadOVRecord", pBuffer); }
  HRESULT STDMETHODCALLTYPE Reserved22() override { return called("Reserved22"); }
  HRESULT STDMETHODCALLTYPE DeleteRow(LONG lIndex) override { return called("DeleteRow", lIndex); }
  HRESULT STDMETHODCALLTYPE GetCurrentRow(LONG* pVal) override { return called("GetCurrentRow", pVal); }
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
  HRESULT STDMETHODCALLTYPE Reserved23() override { return called("Reserved23"); }
  HRESULT STDMETHODCALLTYPE Reserved24() override { return called("Reserved24"); }
  HRESULT STDMETHODCALLTYPE Reserved25() override { return called("Reserved25"); }
  HRESULT STDMETHODCALLTYPE Reserved26() override { return called("Reserved26"); }
  HRESULT STDMETHODCALLTYPE Reserved27() override { return called("Reserved27"); }
  HRESULT STDMETHODCALLTYPE Reserved28() override { return called("Reserved28"); }
  HRESULT STDMETHODCALLTYPE Reserved29() override { return called("Reserved29"); }
};

}  // namespace ovtest
