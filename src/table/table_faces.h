// The two faces of `COvTable`. Both interfaces have a `ReadOVRecord`, and it acts differently in each; all
// other methods that they share are one and the same. Reserved positions do nothing.
#pragma once

#include "platform/object.h"

namespace ovf {

struct table_face : IOvTable {
  virtual HRESULT read_record(LONG* buffer) = 0;

  HRESULT STDMETHODCALLTYPE ReadOVRecord(LONG* buffer) override { return read_record(buffer); }
};

struct zu_table_face : IZuCommonDataTable {
  /// Reads the record into the method's own argument, which is gone when the call returns: siblings call
  /// it for its status. The caller's memory is not written.
  virtual HRESULT read_record_into_argument() = 0;

  HRESULT STDMETHODCALLTYPE ReadOVRecord(LONG*) override { return read_record_into_argument(); }
  HRESULT STDMETHODCALLTYPE Reserved1() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved2() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved3() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved4() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved5() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved8() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved9() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved10() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved11() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved12() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved13() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved14() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved15() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved16() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved17() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved18() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved19() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved20() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved21() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved22() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved23() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved24() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved25() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved26() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved27() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved28() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved29() override { return E_NOTIMPL; }
};

template <>
inline constexpr IID iid_of<table_face> = IID_IOvTable;
template <>
inline constexpr IID iid_of<zu_table_face> = IID_IZuCommonDataTable;
template <>
inline const dispatch_methods& methods_of<table_face>() noexcept {
  return methods_of<IOvTable>();
}
template <>
inline const dispatch_methods& methods_of<zu_table_face>() noexcept {
  return methods_of<IZuCommonDataTable>();
}

}  // namespace ovf
