// The schema object: describes the fields of one table. A host builds one to make a table, a table
// object fills one from an open file. It never touches a file itself.
//
//   schema_field, schema_fields  the fields, without the component around them
//   ov_schema_fields.cpp        one field at a time, look-up by name
//   ov_schema_columns.cpp       appending whole fields
//   ov_schema_properties.cpp    latch, description, precision, special values
//   ov_schema_templates.cpp     kind of table (type_hint.h), standard fields of the common kinds
//   ov_schema_xml.cpp           the XML form (schema_xml_writer.h, schema_xml_reader.h)
//   ov_schema_merge.cpp         fields of another schema
//   ov_schema_long_names.cpp    the user's choice of long field names
//   schema_filling.h            what table objects need beyond the published interfaces
#pragma once

#include "base/text.h"
#include "platform/object.h"
#include "schema/refusals.h"
#include "schema/schema_fields.h"
#include "schema/schema_filling.h"
#include "server/report_error.h"

namespace ovf {

inline constexpr LONG widest_text = 1'048'576;  ///< characters of a field

/// `IOvSchema` and the two operations that stand behind it in the table of functions, known to C++
/// callers alone.
struct schema_operations : IOvSchema {
  /// Appends a column of value 0 or blanks; `length` counts characters and is of no account for numbers.
  virtual HRESULT STDMETHODCALLTYPE AddColumnOfLength(BSTR name, OvColumnType type, LONG length) = 0;
  /// The same with 8 characters.
  virtual HRESULT STDMETHODCALLTYPE AddColumnOfUsualLength(BSTR name, OvColumnType type) = 0;
};

template <>
inline constexpr IID iid_of<schema_operations> = IID_IOvSchema;
template <>
inline const dispatch_methods& methods_of<schema_operations>() noexcept {
  return methods_of<IOvSchema>();
}

class COvSchema final
    : public component_class<COvSchema, schema_operations, IZuCommonDataSchema, schema_filling> {
 public:
  static constexpr CLSID class_id = CLSID_OvSchema;
  static constexpr IID interface_id = IID_IOvSchema;

  HRESULT STDMETHODCALLTYPE get_TypeHint(OvFileType* pVal) override;
  HRESULT STDMETHODCALLTYPE GetFieldDefault(LONG lIndex, VARIANT* pVal) override;
  HRESULT STDMETHODCALLTYPE SetFieldDefault(LONG lIndex, VARIANT newVal) override;
  HRESULT STDMETHODCALLTYPE GetFieldOffset(LONG lIndex, LONG* pVal) override;
  HRESULT STDMETHODCALLTYPE SetFieldOffset(LONG lIndex, LONG newVal) override;
  HRESULT STDMETHODCALLTYPE get_ReadOnly(VARIANT_BOOL* pVal) override;
  HRESULT STDMETHODCALLTYPE put_ReadOnly(VARIANT_BOOL newVal) override;
  HRESULT STDMETHODCALLTYPE get_FieldCount(LONG* pVal) override;
  HRESULT STDMETHODCALLTYPE put_FieldCount(LONG newVal) override;
  HRESULT STDMETHODCALLTYPE GetFieldName(LONG lIndex, BSTR* pVal) override;
  HRESULT STDMETHODCALLTYPE SetFieldName(LONG lIndex, BSTR newVal) override;
  HRESULT STDMETHODCALLTYPE GetFieldType(LONG lIndex, OvColumnType* pVal) override;
  HRESULT STDMETHODCALLTYPE SetFieldType(LONG lIndex, OvColumnType newVal) override;
  HRESULT STDMETHODCALLTYPE GetFieldIndex(BSTR name, LONG* pVal) override;
  HRESULT STDMETHODCALLTYPE get_Description(BSTR* pVal) override;
  HRESULT STDMETHODCALLTYPE put_Description(BSTR newVal) override;
  HRESULT STDMETHODCALLTYPE AddColumn(BSTR name, OvColumnType type) override;
  HRESULT STDMETHODCALLTYPE GetFieldSize(LONG lIndex, LONG* pVal) override;
  HRESULT STDMETHODCALLTYPE SetFieldSize(LONG lIndex, LONG newVal) override;
  HRESULT STDMETHODCALLTYPE AddStringColumn(BSTR name, LONG length, BSTR defaultValue,
                                            LONG implicit) override;
  HRESULT STDMETHODCALLTYPE AddNumericColumn(BSTR name, double defaultValue, LONG implicit) override;
  HRESULT STDMETHODCALLTYPE get_DoublePrecisionFlag(VARIANT_BOOL* pVal) override;
  HRESULT STDMETHODCALLTYPE put_DoublePrecisionFlag(LONG newVal) override;
  HRESULT STDMETHODCALLTYPE CreateModelFile(double dXINC, double dYINC, double dZINC, double dXMORIG,
                                            double dYMORIG, double dZMORIG, LONG Imin, LONG Imax, LONG Jmin,
                                            LONG Jmax, LONG Kmin, LONG Kmax) override;
  HRESULT STDMETHODCALLTYPE CreatePointsFile() override;
  HRESULT STDMETHODCALLTYPE CreateStringsFile() override;
  HRESULT STDMETHODCALLTYPE CreateWfTriangleFile() override;
  HRESULT STDMETHODCALLTYPE CreateWfPointFile() override;
  HRESULT STDMETHODCALLTYPE IsFieldImplicit(LONG lIndex, VARIANT_BOOL* pVal) override;
  HRESULT STDMETHODCALLTYPE GetFieldSizeChars(LONG lIndex, LONG* pVal) override;
  HRESULT STDMETHODCALLTYPE get_SpecialValueAbsent(VARIANT* pVal) override;
  HRESULT STDMETHODCALLTYPE get_SpecialValueTrace(VARIANT* pVal) override;
  HRESULT STDMETHODCALLTYPE get_SpecialValueBottom(VARIANT* pVal) override;
  HRESULT STDMETHODCALLTYPE get_SpecialValueTop(VARIANT* pVal) override;
  HRESULT STDMETHODCALLTYPE CreateRegularGrid(double dXINC, double dYINC, double dZINC, double dXMORIG,
                                              double dYMORIG, double dZMORIG, LONG Imax, LONG Jmax, LONG Kmax,
                                              VARIANT_BOOL bIJK) override;
  HRESULT STDMETHODCALLTYPE get_DoublePrecision(VARIANT_BOOL* pVal) override;
  HRESULT STDMETHODCALLTYPE put_DoublePrecision(VARIANT_BOOL newVal) override;
  HRESULT STDMETHODCALLTYPE GetSchemaAsXML(BSTR* pVal) override;
  HRESULT STDMETHODCALLTYPE SetSchemaUsingXML(BSTR newVal) override;
  HRESULT STDMETHODCALLTYPE Merge(IOvSchema* pSchema, OvSchemaMergeMode Mode) override;
  HRESULT STDMETHODCALLTYPE get_FieldNameMaxLength(LONG* pVal) override;
  HRESULT STDMETHODCALLTYPE get_UseLongFieldNames(VARIANT_BOOL* pVal) override;
  HRESULT STDMETHODCALLTYPE get_UseLongFieldNamesMaster(VARIANT_BOOL* pVal) override;
  HRESULT STDMETHODCALLTYPE put_UseLongFieldNamesMaster(VARIANT_BOOL newVal) override;

  HRESULT STDMETHODCALLTYPE AddColumnOfLength(BSTR name, OvColumnType type, LONG length) override;
  HRESULT STDMETHODCALLTYPE AddColumnOfUsualLength(BSTR name, OvColumnType type) override;

  // What IZuCommonDataSchema has beyond the methods above.
  HRESULT STDMETHODCALLTYPE AddColumn(BSTR name, OvColumnType type, LONG length) override;
  HRESULT STDMETHODCALLTYPE Reserved1() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved2() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved3() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved4() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved5() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved6() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved7() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reserved8() override { return E_NOTIMPL; }

  void STDMETHODCALLTYPE begin_filling() noexcept override;
  std::uint64_t STDMETHODCALLTYPE field_stamp() noexcept override { return fields_.stamp(); }

 private:
  friend component_class;
  COvSchema() = default;
  ~COvSchema() = default;

  bool is_double() const noexcept { return double_precision_ != 0; }

  /// Hands out what `read` finds in the field.
  template <class Out, class Read>
  HRESULT read_field(LONG index, Out* out, Read read);
  /// Lets `write` change the field.
  template <class Write>
  HRESULT write_field(LONG index, Write write);
  HRESULT hand_out_special(double value, VARIANT* out) const noexcept;

  /// Reserves the slot of the next field; E_FAIL when there may be no more.
  HRESULT begin_column(LONG& index);
  HRESULT append_numeric(BSTR name, double default_value, LONG implicit);
  HRESULT append_text(BSTR name, LONG length, wide_view default_value, LONG implicit);

  /// Throws MyExceptionClass for what Merge refuses.
  void check_mergeable(IOvSchema* other) const;

  bool read_only_ = false;  ///< a latch: never cleared once set, but for `begin_filling`
  schema_fields fields_;
  wide description_;
  OvFileType type_hint_ = ovNothing;  ///< once it was asked for
  LONG double_precision_ = 0;         ///< as given; not 0 means 8-byte words
};

}  // namespace ovf
