// The record-set table object: the same files and rows as `COvTable`, with moves, named columns, and rows
// that can be deleted. Its messages are its own.
#pragma once

#include "platform/object.h"
#include "server/report_error.h"
#include "table/table_core.h"

namespace ovf {

class COvTableADO final
    : public component_class<COvTableADO, IOvTableADO, IOvTableMaintenance, IOvProgressSource> {
 public:
  static constexpr CLSID class_id = CLSID_OvTableADO;
  static constexpr IID interface_id = IID_IOvTableADO;

  HRESULT STDMETHODCALLTYPE get_Schema(IOvSchema** pVal) override;
  HRESULT STDMETHODCALLTYPE put_Schema(IOvSchema* newVal) override;
  HRESULT STDMETHODCALLTYPE get_Name(BSTR* pVal) override;
  HRESULT STDMETHODCALLTYPE put_Name(BSTR newVal) override;
  HRESULT STDMETHODCALLTYPE get_EOF(VARIANT_BOOL* pVal) override;
  HRESULT STDMETHODCALLTYPE get_BOF(VARIANT_BOOL* pVal) override;
  HRESULT STDMETHODCALLTYPE GetRowCount(LONG* pVal) override;
  HRESULT STDMETHODCALLTYPE GetCurrentRow(LONG* pVal) override;
  HRESULT STDMETHODCALLTYPE AddRow() override;
  HRESULT STDMETHODCALLTYPE DeleteRow(LONG lRow) override;
  HRESULT STDMETHODCALLTYPE GetColumn(LONG index, VARIANT* val) override;
  HRESULT STDMETHODCALLTYPE SetColumn(LONG index, VARIANT val) override;
  HRESULT STDMETHODCALLTYPE MoveTo(LONG record) override;
  HRESULT STDMETHODCALLTYPE MoveFirst() override;
  HRESULT STDMETHODCALLTYPE MoveNext() override;
  HRESULT STDMETHODCALLTYPE MoveLast() override;
  HRESULT STDMETHODCALLTYPE MovePrevious() override;
  HRESULT STDMETHODCALLTYPE Open(BSTR filename, LONG ReadOnly) override;
  HRESULT STDMETHODCALLTYPE Close() override;
  HRESULT STDMETHODCALLTYPE Create(BSTR filename, IDispatch* tableDefinition) override;
  HRESULT STDMETHODCALLTYPE Update() override;
  HRESULT STDMETHODCALLTYPE SetNamedColumn(BSTR bsName, VARIANT val) override;
  HRESULT STDMETHODCALLTYPE GetNamedColumn(BSTR bsName, VARIANT* val) override;

  HRESULT STDMETHODCALLTYPE GetFacts(OvTableFacts* pFacts) override;
  HRESULT STDMETHODCALLTYPE Rebuild(IOvSchema* pSchema, LONG nColumns, const LONG* pColumnOf, LONG nRows,
                                    const LONG* pRowOf) override;
  HRESULT STDMETHODCALLTYPE Sync() override;

  HRESULT STDMETHODCALLTYPE SetProgress(IOvProgress* pProgress) override;

 private:
  friend component_class;
  COvTableADO() = default;
  ~COvTableADO() = default;

  /// The number of the first column of exactly that name; 0 when there is none.
  LONG column_of(wide_view name) const;

  table_core core_;
};

}  // namespace ovf
