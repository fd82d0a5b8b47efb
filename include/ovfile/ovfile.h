// The published contract: identifiers, enumerations and interfaces of OvFile. Field, column and row
// numbers count from 1. Every method returns a status; a failed one that has a message publishes it as
// the thread's error information (GetErrorInfo). S_FALSE is success: a cursor ran off an end, a table
// is empty, or a text was cut to the field's width.
#pragma once

#include "ovfile/component.h"

inline constexpr CLSID CLSID_OvTable{
    0x3A9F6E21, 0xC48B, 0x4D07, {0xB2, 0x5E, 0x91, 0xC7, 0xA3, 0xD0, 0xF4, 0x68}};
inline constexpr CLSID CLSID_OvSchema{
    0x5C1E0A37, 0x7D42, 0x4E91, {0xA3, 0xB6, 0x2F, 0x8D, 0x64, 0xC0, 0x9E, 0x15}};
inline constexpr CLSID CLSID_OvTableADO{
    0xE2086A4D, 0x57B3, 0x4C19, {0x9F, 0x7E, 0x3B, 0x51, 0xC8, 0xD0, 0x6A, 0x24}};
inline constexpr GUID LIBID_OvFileLib{
    0x9D63A5E7, 0x14F0, 0x4B2C, {0x8E, 0x39, 0x6A, 0x07, 0xC4, 0xB1, 0xD2, 0xF5}};
inline constexpr IID IID_IOvTable{
    0x6B91F3A0, 0xD27C, 0x4385, {0xA4, 0xE6, 0x0C, 0x9B, 0x75, 0xE2, 0x1D, 0x38}};
inline constexpr IID IID_IOvSchema{
    0xC05B2E96, 0xA831, 0x47D4, {0x95, 0xF2, 0x1D, 0x6E, 0x8B, 0x37, 0xA0, 0xC2}};
inline constexpr IID IID_IOvTableADO{
    0x0F4C8B93, 0x6A27, 0x4E5D, {0xB1, 0xC0, 0xD8, 0x3E, 0x29, 0xF7, 0xA6, 0x15}};
inline constexpr IID IID_IZuCommonDataTable{
    0x2D7F4B16, 0x8C3E, 0x4F59, {0xA0, 0xD2, 0x6E, 0x91, 0xB5, 0xC8, 0x7F, 0x34}};
inline constexpr IID IID_IZuCommonDataSchema{
    0x71C0A9E8, 0x35B4, 0x4D6F, {0x92, 0xE7, 0x0B, 0x4D, 0x8F, 0x1A, 0x6C, 0x53}};
inline constexpr IID IID_IOvTableMaintenance{
    0x9A0C47E2, 0x5D3B, 0x4F81, {0xB6, 0xC9, 0x27, 0xE4, 0xD8, 0x10, 0x5F, 0x6A}};

/// What a column holds: a number of 4 or 8 bytes, or text.
enum OvColumnType : LONG { ovColumnSingle = 1, ovColumnDouble = 2, ovColumnString = 3 };

/// Kinds of table, as `TypeHint` finds them from the field names.
enum OvFileType : LONG {
  ovNothing = 0,
  ovGenericTable = 0x40000000,
  ovPerimeter = 0x1,
  ovString = 0x2,
  ovDrillHole = 0x4,
  ovWireframe = 0x8,
  ovDtm = 0x10,
  ovBlockModel = 0x20,
  ovWireframePoint = 0x40,
  ovPlot = 0x80,
  ovResults = 0x100,
  ovCrossSection = 0x200,
  ovPointData = 0x400,
  ovSchedule = 0x800,
  ovAssays = 0x1000,
  ovCollars = 0x2000,
  ovNUL = 0x01000000,
  ovSection = 0x02000000,
  ovCatalogue = 0x03000000,
  ovRosette = 0x04000000,
  ovScheduleData = 0x05000000,
  ovCalendar = 0x06000000,
  ovGraphics = 0x07000000,
  ovDependency = 0x08000000,
  ovPen = 0x09000000,
  ovFilter = 0x0A000000,
  ovValidation = 0x0B000000,
  ovBlastholePattern = 0x0C000000,
  ovDrillholeSurvey = 0x0D000000,
  ovExperimentalVariogram = 0x0E000000,
  ovModelVariogram = 0x0F000000,
  ovRigDefinition = 0x10000000,
  ovDesign = 0x11000000,
  ovMacro = 0x12000000,
  ovPlotFile = 0x13000000,
  ovStereonet = 0x14000000,
  ovVisualiser = 0x15000000,
  ovWebBrowser = 0x16000000,
  ovImage = 0x17000000,
  ovEstimationParameters = 0x18000000,
  ovSearchParameters = 0x19000000,
  ovAdvancedEstimationSearchParameters = 0x1A000000,
  ovSamplePairs = 0x1B000000,
  ovStatsOutput = 0x1C000000,
  ovHistogram = 0x1D000000,
  ovVolumeReport = 0x1E000000,
  ovPicture = 0x1F000000,
  ovEverything = -1
};

enum OvSchemaMergeMode : LONG { ovSchemaMergeModeMatching = 0, ovSchemaMergeModeAll = 1 };

#define OVFILE_METHOD virtual HRESULT STDMETHODCALLTYPE

/// A table definition: an ordered list of fields, a description and a precision.
struct IOvSchema : IDispatch {
  OVFILE_METHOD get_TypeHint(OvFileType* pVal) = 0;
  OVFILE_METHOD GetFieldDefault(LONG lIndex, VARIANT* pVal) = 0;
  OVFILE_METHOD SetFieldDefault(LONG lIndex, VARIANT newVal) = 0;
  // Stored word position; -1 marks an implicit field.
  OVFILE_METHOD GetFieldOffset(LONG lIndex, LONG* pVal) = 0;
  OVFILE_METHOD SetFieldOffset(LONG lIndex, LONG newVal) = 0;
  OVFILE_METHOD get_ReadOnly(VARIANT_BOOL* pVal) = 0;
  OVFILE_METHOD put_ReadOnly(VARIANT_BOOL newVal) = 0;
  OVFILE_METHOD get_FieldCount(LONG* pVal) = 0;
  // Reserves slots; never adds, removes or truncates fields.
  OVFILE_METHOD put_FieldCount(LONG newVal) = 0;
  OVFILE_METHOD GetFieldName(LONG lIndex, BSTR* pVal) = 0;
  OVFILE_METHOD SetFieldName(LONG lIndex, BSTR newVal) = 0;
  OVFILE_METHOD GetFieldType(LONG lIndex, OvColumnType* pVal) = 0;
  OVFILE_METHOD SetFieldType(LONG lIndex, OvColumnType newVal) = 0;
  // S_FALSE and -1 when no field has exactly this name.
  OVFILE_METHOD GetFieldIndex(BSTR name, LONG* pVal) = 0;
  OVFILE_METHOD get_Description(BSTR* pVal) = 0;
  OVFILE_METHOD put_Description(BSTR newVal) = 0;
  OVFILE_METHOD AddColumn(BSTR name, OvColumnType type) = 0;
  // Sizes are bytes of a record.
  OVFILE_METHOD GetFieldSize(LONG lIndex, LONG* pVal) = 0;
  OVFILE_METHOD SetFieldSize(LONG lIndex, LONG newVal) = 0;
  OVFILE_METHOD AddStringColumn(BSTR name, LONG length, BSTR defaultValue, LONG implicit) = 0;
  OVFILE_METHOD AddNumericColumn(BSTR name, double defaultValue, LONG implicit) = 0;
  OVFILE_METHOD get_DoublePrecisionFlag(VARIANT_BOOL* pVal) = 0;
  OVFILE_METHOD put_DoublePrecisionFlag(LONG newVal) = 0;
  OVFILE_METHOD CreateModelFile(double dXINC, double dYINC, double dZINC, double dXMORIG, double dYMORIG,
                                double dZMORIG, LONG Imin, LONG Imax, LONG Jmin, LONG Jmax, LONG Kmin,
                                LONG Kmax) = 0;
  OVFILE_METHOD CreatePointsFile() = 0;
  OVFILE_METHOD CreateStringsFile() = 0;
  OVFILE_METHOD CreateWfTriangleFile() = 0;
  OVFILE_METHOD CreateWfPointFile() = 0;
  OVFILE_METHOD IsFieldImplicit(LONG lIndex, VARIANT_BOOL* pVal) = 0;
  OVFILE_METHOD GetFieldSizeChars(LONG lIndex, LONG* pVal) = 0;
  OVFILE_METHOD get_SpecialValueAbsent(VARIANT* pVal) = 0;
  OVFILE_METHOD get_SpecialValueTrace(VARIANT* pVal) = 0;
  OVFILE_METHOD get_SpecialValueBottom(VARIANT* pVal) = 0;
  OVFILE_METHOD get_SpecialValueTop(VARIANT* pVal) = 0;
  OVFILE_METHOD CreateRegularGrid(double dXINC, double dYINC, double dZINC, double dXMORIG, double dYMORIG,
                                  double dZMORIG, LONG Imax, LONG Jmax, LONG Kmax, VARIANT_BOOL bIJK) = 0;
  OVFILE_METHOD get_DoublePrecision(VARIANT_BOOL* pVal) = 0;
  OVFILE_METHOD put_DoublePrecision(VARIANT_BOOL newVal) = 0;
  OVFILE_METHOD GetSchemaAsXML(BSTR* pVal) = 0;
  OVFILE_METHOD SetSchemaUsingXML(BSTR newVal) = 0;
  // Throws MyExceptionClass for a null schema and for schemas of different precision.
  OVFILE_METHOD Merge(IOvSchema* pSchema, OvSchemaMergeMode Mode) = 0;
  OVFILE_METHOD get_FieldNameMaxLength(LONG* pVal) = 0;
  OVFILE_METHOD get_UseLongFieldNames(VARIANT_BOOL* pVal) = 0;
  OVFILE_METHOD get_UseLongFieldNamesMaster(VARIANT_BOOL* pVal) = 0;
  OVFILE_METHOD put_UseLongFieldNamesMaster(VARIANT_BOOL newVal) = 0;
};

/// The schema as sibling components see it; what they share runs the same code as `IOvSchema`.
struct IZuCommonDataSchema : IDispatch {
  OVFILE_METHOD get_TypeHint(OvFileType* pVal) = 0;
  OVFILE_METHOD Reserved1() = 0;
  OVFILE_METHOD Reserved2() = 0;
  OVFILE_METHOD Reserved3() = 0;
  OVFILE_METHOD Reserved4() = 0;
  OVFILE_METHOD Reserved5() = 0;
  OVFILE_METHOD GetSchemaAsXML(BSTR* pVal) = 0;
  OVFILE_METHOD SetSchemaUsingXML(BSTR newVal) = 0;
  OVFILE_METHOD GetFieldDefault(LONG lIndex, VARIANT* pVal) = 0;
  OVFILE_METHOD SetFieldDefault(LONG lIndex, VARIANT newVal) = 0;
  OVFILE_METHOD GetFieldOffset(LONG lIndex, LONG* pVal) = 0;
  OVFILE_METHOD SetFieldOffset(LONG lIndex, LONG newVal) = 0;
  OVFILE_METHOD get_ReadOnly(VARIANT_BOOL* pVal) = 0;
  OVFILE_METHOD put_ReadOnly(VARIANT_BOOL newVal) = 0;
  OVFILE_METHOD get_FieldCount(LONG* pVal) = 0;
  OVFILE_METHOD put_FieldCount(LONG newVal) = 0;
  OVFILE_METHOD GetFieldName(LONG lIndex, BSTR* pVal) = 0;
  OVFILE_METHOD SetFieldName(LONG lIndex, BSTR newVal) = 0;
  OVFILE_METHOD GetFieldType(LONG lIndex, OvColumnType* pVal) = 0;
  OVFILE_METHOD SetFieldType(LONG lIndex, OvColumnType newVal) = 0;
  OVFILE_METHOD GetFieldIndex(BSTR name, LONG* pVal) = 0;
  OVFILE_METHOD get_Description(BSTR* pVal) = 0;
  OVFILE_METHOD put_Description(BSTR newVal) = 0;
  OVFILE_METHOD AddColumn(BSTR name, OvColumnType type, LONG length) = 0;
  OVFILE_METHOD Reserved6() = 0;
  OVFILE_METHOD GetFieldSize(LONG lIndex, LONG* pVal) = 0;
  OVFILE_METHOD SetFieldSize(LONG lIndex, LONG newVal) = 0;
  OVFILE_METHOD Reserved7() = 0;
  OVFILE_METHOD Reserved8() = 0;
};

/// One table file with a cursor on its rows.
struct IOvTable : IDispatch {
  OVFILE_METHOD GetColumnAsDouble(LONG lIndex, double* pVal) = 0;
  OVFILE_METHOD GetColumnAsFloat(LONG lIndex, float* pVal) = 0;
  OVFILE_METHOD GetColumnAsString(LONG lIndex, BSTR* pVal) = 0;
  OVFILE_METHOD GetRowCount(LONG* pVal) = 0;
  OVFILE_METHOD GetNextRow() = 0;
  OVFILE_METHOD GetColumn(LONG lIndex, VARIANT* pVal) = 0;
  OVFILE_METHOD get_Schema(IOvSchema** pVal) = 0;
  // Takes over the caller's reference: who keeps the schema adds one before. (Put through Invoke, the
  // schema stays the caller's.)
  OVFILE_METHOD put_Schema(IOvSchema* newVal) = 0;
  OVFILE_METHOD get_Name(BSTR* pVal) = 0;
  OVFILE_METHOD put_Name(BSTR newVal) = 0;
  OVFILE_METHOD AddRow() = 0;
  OVFILE_METHOD SetColumn(LONG lIndex, VARIANT newVal) = 0;
  OVFILE_METHOD SetColumnDouble(LONG lIndex, double newVal) = 0;
  OVFILE_METHOD SetColumnFloat(LONG lIndex, float newVal) = 0;
  OVFILE_METHOD SetColumnString(LONG lIndex, BSTR newVal) = 0;
  OVFILE_METHOD GetFirstRow() = 0;
  OVFILE_METHOD GetCurrentRow(LONG* pVal) = 0;
  OVFILE_METHOD GetPreviousRow() = 0;
  OVFILE_METHOD GetLastRow() = 0;
  OVFILE_METHOD GetRowAt(LONG lIndex) = 0;
  OVFILE_METHOD Open(BSTR filename, LONG ReadOnly) = 0;
  OVFILE_METHOD Close() = 0;
  OVFILE_METHOD Create(BSTR bsFilename, IDispatch* tableDefinition) = 0;
  OVFILE_METHOD get_EOF(VARIANT_BOOL* pVal) = 0;
  OVFILE_METHOD get_BOF(VARIANT_BOOL* pVal) = 0;
  OVFILE_METHOD ReadOVRecord(LONG* pBuffer) = 0;
  OVFILE_METHOD DeleteRow(LONG lIndex) = 0;
  OVFILE_METHOD SetFilteredIn(LONG row) = 0;
  OVFILE_METHOD SetFilteredOut(LONG row) = 0;
  OVFILE_METHOD IsFilteredIn(LONG nMode, LONG row, VARIANT_BOOL* pbVal) = 0;
  OVFILE_METHOD IsFilteredOut(LONG nMode, LONG row, VARIANT_BOOL* pbVal) = 0;
  OVFILE_METHOD get_FilterString(LONG nMode, BSTR* pVal) = 0;
  OVFILE_METHOD put_FilterString(LONG nMode, BSTR newVal) = 0;
  OVFILE_METHOD GetColumnMin(LONG index, double* pVal) = 0;
  OVFILE_METHOD GetColumnMax(LONG index, double* pVal) = 0;
  OVFILE_METHOD FlushChanges() = 0;
  OVFILE_METHOD get_IsLinked(VARIANT_BOOL* pVal) = 0;
  OVFILE_METHOD Sort(LONG lIndex, VARIANT_BOOL bAscending) = 0;
  OVFILE_METHOD WriteOVRecord(LONG* pBuffer) = 0;
  OVFILE_METHOD Repair(IOvSchema* pSchema) = 0;
  OVFILE_METHOD GetLooseSignature(BSTR* pVal) = 0;
  OVFILE_METHOD GetTightSignature(BSTR* pVal) = 0;
  OVFILE_METHOD GetSignature(VARIANT_BOOL ignoreDescription, VARIANT_BOOL ignoreFieldOrder,
                             VARIANT_BOOL ignorePrecision, LONG nPtsAfterDecimal, BSTR* pVal) = 0;
  OVFILE_METHOD SetColumnDefaultFloat(LONG lIndex, float newVal) = 0;
  OVFILE_METHOD SetColumnDefaultDouble(LONG lIndex, double newVal) = 0;
  OVFILE_METHOD SetColumnName(LONG lIndex, BSTR newVal) = 0;
  OVFILE_METHOD SetColumnDefaultString(LONG lIndex, BSTR newVal) = 0;
  OVFILE_METHOD AddImplicitNumericColumnFloat(BSTR bstrName, float defaultValue) = 0;
  OVFILE_METHOD AddImplicitNumericColumnDouble(BSTR bstrName, double defaultValue) = 0;
  OVFILE_METHOD AddImplicitStringColumn(BSTR bstrName, LONG length, BSTR bstrDefaultValue) = 0;
  OVFILE_METHOD ReduceRowCountTo(LONG lRows) = 0;
};

/// The table as sibling components see it; forwarded methods run the same code as `IOvTable`.
struct IZuCommonDataTable : IDispatch {
  OVFILE_METHOD Reserved1() = 0;
  OVFILE_METHOD Reserved2() = 0;
  OVFILE_METHOD GetColumnAsDouble(LONG lIndex, double* pVal) = 0;
  OVFILE_METHOD GetColumnAsFloat(LONG lIndex, float* pVal) = 0;
  OVFILE_METHOD Reserved3() = 0;
  OVFILE_METHOD Reserved4() = 0;
  OVFILE_METHOD GetColumnAsString(LONG lIndex, BSTR* pVal) = 0;
  OVFILE_METHOD GetRowCount(LONG* pVal) = 0;
  OVFILE_METHOD GetNextRow() = 0;
  OVFILE_METHOD GetColumn(LONG lIndex, VARIANT* pVal) = 0;
  OVFILE_METHOD Reserved5() = 0;
  OVFILE_METHOD Reserved6(IZuCommonDataSchema** pVal) = 0;
  OVFILE_METHOD Reserved7() = 0;
  OVFILE_METHOD get_Name(BSTR* pVal) = 0;
  OVFILE_METHOD put_Name(BSTR newVal) = 0;
  OVFILE_METHOD AddRow() = 0;
  OVFILE_METHOD SetColumn(LONG lIndex, VARIANT newVal) = 0;
  OVFILE_METHOD Reserved8() = 0;
  OVFILE_METHOD Reserved9() = 0;
  OVFILE_METHOD SetColumnDouble(LONG lIndex, double newVal) = 0;
  OVFILE_METHOD SetColumnFloat(LONG lIndex, float newVal) = 0;
  OVFILE_METHOD Reserved10() = 0;
  OVFILE_METHOD Reserved11() = 0;
  OVFILE_METHOD SetColumnString(LONG lIndex, BSTR newVal) = 0;
  OVFILE_METHOD GetFirstRow() = 0;
  OVFILE_METHOD Reserved12() = 0;
  OVFILE_METHOD Reserved13() = 0;
  OVFILE_METHOD Reserved14() = 0;
  OVFILE_METHOD Reserved15() = 0;
  OVFILE_METHOD Reserved16() = 0;
  OVFILE_METHOD Reserved17() = 0;
  OVFILE_METHOD Reserved18() = 0;
  OVFILE_METHOD Reserved19() = 0;
  OVFILE_METHOD Reserved20() = 0;
  OVFILE_METHOD Reserved21() = 0;
  OVFILE_METHOD ReadOVRecord(LONG* pBuffer) = 0;
  OVFILE_METHOD Reserved22() = 0;
  OVFILE_METHOD DeleteRow(LONG lIndex) = 0;
  OVFILE_METHOD GetCurrentRow(LONG* pVal) = 0;
  OVFILE_METHOD SetFilteredIn(LONG row) = 0;
  OVFILE_METHOD SetFilteredOut(LONG row) = 0;
  OVFILE_METHOD IsFilteredIn(LONG nMode, LONG row, VARIANT_BOOL* pbVal) = 0;
  OVFILE_METHOD IsFilteredOut(LONG nMode, LONG row, VARIANT_BOOL* pbVal) = 0;
  OVFILE_METHOD get_FilterString(LONG nMode, BSTR* pVal) = 0;
  OVFILE_METHOD put_FilterString(LONG nMode, BSTR newVal) = 0;
  OVFILE_METHOD Reserved23() = 0;
  OVFILE_METHOD Reserved24() = 0;
  OVFILE_METHOD Reserved25() = 0;
  OVFILE_METHOD Reserved26() = 0;
  OVFILE_METHOD Reserved27() = 0;
  OVFILE_METHOD Reserved28() = 0;
  OVFILE_METHOD Reserved29() = 0;
};

/// The same table seen as a record set.
struct IOvTableADO : IDispatch {
  OVFILE_METHOD get_Schema(IOvSchema** pVal) = 0;
  // Takes over the caller's reference, as that of IOvTable does.
  OVFILE_METHOD put_Schema(IOvSchema* newVal) = 0;
  OVFILE_METHOD get_Name(BSTR* pVal) = 0;
  OVFILE_METHOD put_Name(BSTR newVal) = 0;
  OVFILE_METHOD get_EOF(VARIANT_BOOL* pVal) = 0;
  OVFILE_METHOD get_BOF(VARIANT_BOOL* pVal) = 0;
  OVFILE_METHOD GetRowCount(LONG* pVal) = 0;
  OVFILE_METHOD GetCurrentRow(LONG* pVal) = 0;
  OVFILE_METHOD AddRow() = 0;
  OVFILE_METHOD DeleteRow(LONG lRow) = 0;
  OVFILE_METHOD GetColumn(LONG index, VARIANT* val) = 0;
  OVFILE_METHOD SetColumn(LONG index, VARIANT val) = 0;
  OVFILE_METHOD MoveTo(LONG record) = 0;
  OVFILE_METHOD MoveFirst() = 0;
  OVFILE_METHOD MoveNext() = 0;
  OVFILE_METHOD MoveLast() = 0;
  OVFILE_METHOD MovePrevious() = 0;
  OVFILE_METHOD Open(BSTR filename, LONG ReadOnly) = 0;
  OVFILE_METHOD Close() = 0;
  OVFILE_METHOD Create(BSTR filename, IDispatch* tableDefinition) = 0;
  OVFILE_METHOD Update() = 0;
  OVFILE_METHOD SetNamedColumn(BSTR bsName, VARIANT val) = 0;
  OVFILE_METHOD GetNamedColumn(BSTR bsName, VARIANT* val) = 0;
};

/// What an open table's file looks like. The caller sets `cbSize`.
struct OvTableFacts {
  ULONG cbSize;
  LONG wordBytes;  ///< 4 or 8
  LONG byteOrder;  ///< 0, 256, 1024 or 1280
  LONG atoms;      ///< dictionary entries
  LONG headerPages;
  LONG recordWords;
  LONG recordsPerPage;
  LONG recordsInLastPage;
  LONG reserved;    ///< 0
  long long pages;  ///< header pages included
  long long rows;
  long long fileBytes;
  OLECHAR firstName[9];
  OLECHAR secondName[9];
  OLECHAR description[65];
  OLECHAR owner[9];
};

/// Facts about the open table's file, and safe rebuilding of it. `OvTable` and `OvTableADO` answer it.
struct IOvTableMaintenance : IUnknown {
  OVFILE_METHOD GetFacts(OvTableFacts* pFacts) = 0;
  /// Makes the table anew from rows `pRowOf` (null: all) under `pSchema` (null: the table's own), whose
  /// column i takes its values from column `pColumnOf[i - 1]` (0: the default; null: by name). A schema
  /// without a description leaves the table its own.
  OVFILE_METHOD Rebuild(IOvSchema* pSchema, LONG nColumns, const LONG* pColumnOf, LONG nRows,
                        const LONG* pRowOf) = 0;
  /// Writes what was changed, rows before the header that counts them, and waits until the disk has it. Of a
  /// table that is open for reading there is nothing to write.
  OVFILE_METHOD Sync() = 0;
};

#undef OVFILE_METHOD
