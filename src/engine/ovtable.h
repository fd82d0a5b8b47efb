// The two precisions of an open table: one implementation, `basic_ovtable`.
//
//   ovtable.cpp           the cursor, rows, values
//   ovtable_defaults.cpp  default values of fields, facts of the header
//   ovtable_fields.cpp    new fields and new names
//   ovtable_blocks.cpp    blocks of rows
#pragma once

#include "engine/row_store.h"
#include "engine/table.h"

namespace ovf {

template <class Precision>
class basic_ovtable final : public table {
 public:
  using number = typename Precision::number;

  /// Takes over the open file. `name` is kept as it is given. Throws what reading the header and the
  /// dictionary throws. Destruction writes back what `flush` has not, and swallows failures.
  basic_ovtable(std::unique_ptr<file> opened, wide name, bool read_only, byte_order order);

  wide getDescription() override;
  wide getFileName() override { return name_; }
  bool hasPages() override { return rows_.counts().pages >= 1; }
  std::uint64_t getRowCount() override { return rows_.row_count(); }
  std::uint64_t getFieldCount() override { return rows_.fields().size(); }
  wide getFieldName(std::uint64_t index) override;
  void renameField(std::uint64_t index, const wide& name) override;
  void flushCurrentPage() override;
  void addRow() override;
  void readRecord(std::uint64_t row, void* buffer) override;
  void writeRecord(std::uint64_t row, const void* buffer) override;
  variant getValue(std::uint64_t index) override;
  float getFloat(std::uint64_t index) override;
  double getDouble(std::uint64_t index) override;
  void setDouble(std::uint64_t index, double value) override;
  void setFloat(std::uint64_t index, float value) override;
  void setValue(std::uint64_t index, const VARIANT& value) override;
  void setValueByName(const wide& name, const VARIANT& value) override;
  variant getDefaultValue(std::uint64_t index) override;
  variant getDefaultValueByName(const wide& name) override;
  float getDefaultFloat(std::uint64_t index) override;
  double getDefaultDouble(std::uint64_t index) override;
  void setDefaultString(std::uint64_t index, const wide& value) override;
  void setDefaultFloat(std::uint64_t index, float value) override;
  void setDefaultDouble(std::uint64_t index, double value) override;
  bool isImplicit(std::uint64_t index) override { return rows_.fields().at(index).is_implicit(); }
  bool isImplicitByName(const wide& name) override { return isImplicit(getFieldIndex(name)); }
  std::int64_t getFieldWidth(std::uint64_t index) override;
  std::uint64_t getFieldWidthByName(const wide& name) override;
  field_kind getFieldType(std::uint64_t index) override { return rows_.fields().at(index).kind; }
  field_kind getFieldTypeByName(const wide& name) override { return getFieldType(getFieldIndex(name)); }
  std::uint64_t getFieldIndex(const wide& name) override { return rows_.fields().index_of(name); }
  std::uint64_t addNumericField(const wide& name, float default_value) override;
  std::uint64_t addNumericField(const wide& name, double default_value) override;
  std::uint64_t addAlphaField(const wide& name, std::int64_t width, const wide& default_value) override;
  bool onSetRowCount(std::uint64_t rows) override;
  void flush() override { rows_.flush(); }
  void sync() override { rows_.sync(); }

  table_facts facts() override;
  std::vector<std::byte> headerTexts() override {
    return rows_.header().words(format::first_name_word, format::text_words);
  }
  void readFreshRecord(std::byte* buffer) override;

  const table_fields& fields() const noexcept override { return rows_.fields(); }
  byte_order order() const noexcept override { return rows_.order(); }
  void readRows(std::uint64_t first, std::uint64_t rows, block_buffer& buffer,
                const record_reader& take) override;
  std::uint64_t roomForRows() const noexcept override { return rows_.room_for_rows(); }
  void beginRows() override;
  void putRows(std::uint64_t rows, const record_writer& fill) override { rows_.put_rows(rows, fill); }
  void commitRows() override;
  void giveUpRows() noexcept override { rows_.give_up_rows(); }
  table_version version() const noexcept override { return rows_.version(); }
  bool stamp(file_stamp& found) noexcept override { return rows_.stamp(found); }
  bool readAgain() override;

 protected:
  void locate(std::uint64_t row) override;

 private:
  void resolve_columns();
  /// Runs a body that may bring other pages into memory; the current row's record stays in reach.
  template <class Body>
  void keeping_record(Body body);
  /// Changes the field list; the current row and its record stay.
  template <class Change>
  void change_fields(Change change);
  std::uint64_t add_field(field added);
  /// Every rule for the name of a new field, in their order.
  void check_new_name(const wide& name);
  /// Makes a place the current record's.
  void take(row_place place) noexcept;
  /// Brings the numbers of a record from file order into native order, or back.
  void rearrange_numbers(std::byte* record) const;
  /// The field of that index; MyExceptionClass with `message` unless it is of that kind.
  const field& field_of(std::uint64_t index, field_kind kind, wide_view message) const;
  number native_number(std::uint64_t index);
  void set_native_number(std::uint64_t index, number value);
  void put_native_number(const field& to, std::byte* words, number value);
  void set_native_default(std::uint64_t index, number value);

  wide name_;
  row_store<Precision> rows_;
};

using ovtable = basic_ovtable<single_precision>;
using ovtable64 = basic_ovtable<double_precision>;

}  // namespace ovf
