// The scriptable table object: opens one table file, walks its rows, reads and writes columns, makes new
// files from a schema.
//
//   table_core               what it shares with the record-set object
//   ov_table.cpp             opening, closing, making, name and schema
//   ov_table_cursor.cpp      the cursor and rows
//   ov_table_columns.cpp     values of the current row
//   ov_table_ranges.cpp      smallest and largest values of the columns
//   ov_table_fields.cpp      names and defaults of fields, implicit fields
//   ov_table_filter.cpp      which rows pass an expression
//   ov_table_signature.cpp   digests of shape and content
//   ov_table_sort.cpp        rows in the order of a column
//   ov_table_repair.cpp      other columns
//   ov_table_stream.cpp      whole columns by batches
#pragma once

#include "ovfile/stream.h"
#include "server/report_error.h"
#include "table/column_ranges.h"
#include "table/row_filter.h"
#include "table/table_core.h"
#include "table/table_faces.h"

namespace ovf {

template <>
inline constexpr IID iid_of<IOvTableStream> = IID_IOvTableStream;

class COvTable final : public component_class<COvTable, table_face, zu_table_face, IOvTableMaintenance,
                                              IOvProgressSource, IOvTableStream> {
 public:
  static constexpr CLSID class_id = CLSID_OvTable;
  static constexpr IID interface_id = IID_IOvTable;

  HRESULT STDMETHODCALLTYPE GetColumnAsDouble(LONG lIndex, double* pVal) override;
  HRESULT STDMETHODCALLTYPE GetColumnAsFloat(LONG lIndex, float* pVal) override;
  HRESULT STDMETHODCALLTYPE GetColumnAsString(LONG lIndex, BSTR* pVal) override;
  HRESULT STDMETHODCALLTYPE GetRowCount(LONG* pVal) override;
  HRESULT STDMETHODCALLTYPE GetNextRow() override;
  HRESULT STDMETHODCALLTYPE GetColumn(LONG lIndex, VARIANT* pVal) override;
  HRESULT STDMETHODCALLTYPE get_Schema(IOvSchema** pVal) override;
  HRESULT STDMETHODCALLTYPE put_Schema(IOvSchema* newVal) override;
  HRESULT STDMETHODCALLTYPE get_Name(BSTR* pVal) override;
  HRESULT STDMETHODCALLTYPE put_Name(BSTR newVal) override;
  HRESULT STDMETHODCALLTYPE AddRow() override;
  HRESULT STDMETHODCALLTYPE SetColumn(LONG lIndex, VARIANT newVal) override;
  HRESULT STDMETHODCALLTYPE SetColumnDouble(LONG lIndex, double newVal) override;
  HRESULT STDMETHODCALLTYPE SetColumnFloat(LONG lIndex, float newVal) override;
  HRESULT STDMETHODCALLTYPE SetColumnString(LONG lIndex, BSTR newVal) override;
  HRESULT STDMETHODCALLTYPE GetFirstRow() override;
  HRESULT STDMETHODCALLTYPE GetCurrentRow(LONG* pVal) override;
  HRESULT STDMETHODCALLTYPE GetPreviousRow() override;
  HRESULT STDMETHODCALLTYPE GetLastRow() override;
  HRESULT STDMETHODCALLTYPE GetRowAt(LONG lIndex) override;
  HRESULT STDMETHODCALLTYPE Open(BSTR filename, LONG ReadOnly) override;
  HRESULT STDMETHODCALLTYPE Close() override;
  HRESULT STDMETHODCALLTYPE Create(BSTR bsFilename, IDispatch* tableDefinition) override;
  HRESULT STDMETHODCALLTYPE get_EOF(VARIANT_BOOL* pVal) override;
  HRESULT STDMETHODCALLTYPE get_BOF(VARIANT_BOOL* pVal) override;
  HRESULT STDMETHODCALLTYPE DeleteRow(LONG lIndex) override;
  HRESULT STDMETHODCALLTYPE FlushChanges() override;
  HRESULT STDMETHODCALLTYPE get_IsLinked(VARIANT_BOOL* pVal) override;
  HRESULT STDMETHODCALLTYPE WriteOVRecord(LONG* pBuffer) override;
  HRESULT STDMETHODCALLTYPE ReduceRowCountTo(LONG lRows) override;
  HRESULT STDMETHODCALLTYPE GetColumnMin(LONG index, double* pVal) override;
  HRESULT STDMETHODCALLTYPE GetColumnMax(LONG index, double* pVal) override;
  HRESULT STDMETHODCALLTYPE SetColumnDefaultFloat(LONG lIndex, float newVal) override;
  HRESULT STDMETHODCALLTYPE SetColumnDefaultDouble(LONG lIndex, double newVal) override;
  HRESULT STDMETHODCALLTYPE SetColumnName(LONG lIndex, BSTR newVal) override;
  HRESULT STDMETHODCALLTYPE SetColumnDefaultString(LONG lIndex, BSTR newVal) override;
  HRESULT STDMETHODCALLTYPE AddImplicitNumericColumnFloat(BSTR bstrName, float defaultValue) override;
  HRESULT STDMETHODCALLTYPE AddImplicitNumericColumnDouble(BSTR bstrName, double defaultValue) override;
  HRESULT STDMETHODCALLTYPE AddImplicitStringColumn(BSTR bstrName, LONG length,
                                                    BSTR bstrDefaultValue) override;
  HRESULT STDMETHODCALLTYPE GetLooseSignature(BSTR* pVal) override;
  HRESULT STDMETHODCALLTYPE GetTightSignature(BSTR* pVal) override;
  HRESULT STDMETHODCALLTYPE GetSignature(VARIANT_BOOL ignoreDescription, VARIANT_BOOL ignoreFieldOrder,
                                         VARIANT_BOOL ignorePrecision, LONG nPtsAfterDecimal,
                                         BSTR* pVal) override;
  HRESULT STDMETHODCALLTYPE SetFilteredIn(LONG row) override;
  HRESULT STDMETHODCALLTYPE SetFilteredOut(LONG row) override;
  HRESULT STDMETHODCALLTYPE IsFilteredIn(LONG nMode, LONG row, VARIANT_BOOL* pbVal) override;
  HRESULT STDMETHODCALLTYPE IsFilteredOut(LONG nMode, LONG row, VARIANT_BOOL* pbVal) override;
  HRESULT STDMETHODCALLTYPE get_FilterString(LONG nMode, BSTR* pVal) override;
  HRESULT STDMETHODCALLTYPE put_FilterString(LONG nMode, BSTR newVal) override;
  HRESULT STDMETHODCALLTYPE Sort(LONG lIndex, VARIANT_BOOL bAscending) override;
  HRESULT STDMETHODCALLTYPE Repair(IOvSchema* pSchema) override;

  HRESULT read_record(LONG* buffer) override;
  HRESULT read_record_into_argument() override;
  HRESULT STDMETHODCALLTYPE Reserved6(IZuCommonDataSchema** pVal) override;
  HRESULT STDMETHODCALLTYPE Reserved7() override { return S_FALSE; }

  HRESULT STDMETHODCALLTYPE GetFacts(OvTableFacts* pFacts) override;
  HRESULT STDMETHODCALLTYPE Rebuild(IOvSchema* pSchema, LONG nColumns, const LONG* pColumnOf, LONG nRows,
                                    const LONG* pRowOf) override;
  HRESULT STDMETHODCALLTYPE Sync() override;

  HRESULT STDMETHODCALLTYPE SetProgress(IOvProgress* pProgress) override;

  HRESULT STDMETHODCALLTYPE Read(const OvStreamRequest* pRequest, ArrowArrayStream* pStream) override;
  HRESULT STDMETHODCALLTYPE Append(ArrowArrayStream* pStream, LONG* pRows) override;

 private:
  class stream_owner;

  friend component_class;
  COvTable() = default;
  ~COvTable() = default;

  /// Runs `body` on a valid cursor; reports `refusal` otherwise.
  template <class Body>
  HRESULT on_a_row(wide_view refusal, Body body);
  /// Runs `body` on a valid cursor of a table that may be changed. True from `body`: a text was cut.
  template <class Body>
  HRESULT changing_a_row(Body body);
  /// Runs `body` on a table that may be changed.
  template <class Body>
  HRESULT changing_fields(Body body);
  template <class Body>
  HRESULT changing_field(LONG column, Body body);
  LONG append_rows(ArrowArrayStream& from);
  HRESULT range_end(wide_view refusal, std::optional<double> (column_ranges::*end)(LONG) const noexcept,
                    LONG index, double* out);
  /// Widens the range of a numeric column by a value that it was given.
  void take_stored(LONG column, const VARIANT& value);
  HRESULT make_from(IOvSchema& definition);

  table_core core_;
  column_ranges ranges_;
  row_filter filter_;
  bool is_appending_ = false;  ///< a stream's rows
};

}  // namespace ovf
