// An open table file: its fields, its rows, and the values of the current row. `ovf::table` is what the
// objects above hold; `ovf::ovtable` and `ovf::ovtable64` (ovtable.h) are its two precisions.
//
// Field indexes count from 0 in file order, rows from 1. Refusals are thrown as MyExceptionClass, file
// failures as file_error; a refused call changes nothing.
#pragma once

#include <cstdint>
#include <exception>
#include <vector>

#include "base/file.h"
#include "engine/field.h"
#include "engine/row_blocks.h"
#include "ovfile/exception.h"
#include "platform/variant.h"

namespace ovf {

/// A move beyond the first or the last row.
class bound_error : public MyExceptionClass {
 public:
  using MyExceptionClass::MyExceptionClass;
};

/// What the header of an open table says.
struct table_facts {
  byte_order order = byte_order::native;
  std::uint64_t atoms = 0;
  std::uint64_t header_pages = 0;
  std::uint64_t record_words = 0;
  std::uint64_t records_per_page = 0;
  std::uint64_t records_in_last_page = 0;
  std::uint64_t pages = 0;
  std::uint64_t file_bytes = 0;
  wide first_name;   ///< 8 characters
  wide second_name;  ///< 8 characters
  wide description;  ///< 64 characters
  wide owner;        ///< 8 characters
};

class table {
 public:
  table() = default;
  table(const table&) = delete;
  table& operator=(const table&) = delete;

  // The 41 operations. Their order is part of the engine's contract.
  virtual ~table() = default;
  /// 60 characters of the header's description, untrimmed.
  virtual wide getDescription() = 0;
  virtual wide getFileName() = 0;
  virtual bool hasPages() = 0;
  virtual std::uint64_t getRowCount() = 0;
  virtual std::uint64_t getFieldCount() = 0;
  /// An index equal to the count gives an empty name, a larger one "field index out of range".
  virtual wide getFieldName(std::uint64_t index) = 0;
  /// An index beyond the count is refused with the same words, then the rules of field_name.h hold, also
  /// for the field's own name, which writes nothing. The new name is in the file when this returns; a name
  /// in several header pages needs a copy of the file (file_error "cannot create file").
  virtual void renameField(std::uint64_t index, const wide& name) = 0;
  /// Writes the page of the current row back.
  virtual void flushCurrentPage() = 0;
  /// Appends a row of defaults and moves to it.
  virtual void addRow() = 0;
  /// Copies the current row's record, numbers in native order. The row argument is not used.
  virtual void readRecord(std::uint64_t row, void* buffer) = 0;
  virtual void writeRecord(std::uint64_t row, const void* buffer) = 0;
  /// A number of the precision, a text with its trailing blanks, or empty for an entirely empty text.
  virtual variant getValue(std::uint64_t index) = 0;
  virtual float getFloat(std::uint64_t index);
  virtual double getDouble(std::uint64_t index);
  virtual wide getString(std::uint64_t index);
  virtual void setDouble(std::uint64_t index, double value);
  virtual void setFloat(std::uint64_t index, float value);
  virtual void setString(std::uint64_t index, const wide& value);
  virtual void setValue(std::uint64_t index, const VARIANT& value) = 0;
  virtual void setValueByName(const wide& name, const VARIANT& value) = 0;
  virtual variant getDefaultValue(std::uint64_t index) = 0;
  virtual variant getDefaultValueByName(const wide& name) = 0;
  virtual float getDefaultFloat(std::uint64_t index);
  virtual double getDefaultDouble(std::uint64_t index);
  virtual wide getDefaultString(std::uint64_t index);
  virtual void setDefaultString(std::uint64_t index, const wide& value) = 0;
  virtual void setDefaultFloat(std::uint64_t index, float value) = 0;
  virtual void setDefaultDouble(std::uint64_t index, double value) = 0;
  virtual bool isImplicit(std::uint64_t index) = 0;
  virtual bool isImplicitByName(const wide& name) = 0;
  /// Characters: 4 for each word, also of a number.
  virtual std::int64_t getFieldWidth(std::uint64_t index) = 0;
  virtual std::uint64_t getFieldWidthByName(const wide& name) = 0;
  virtual field_kind getFieldType(std::uint64_t index) = 0;
  virtual field_kind getFieldTypeByName(const wide& name) = 0;
  virtual std::uint64_t getFieldIndex(const wide& name) = 0;
  // New fields have no place in the records: every row reads their default. They are in the file when the
  // call returns their index; rows, the current row and its record stay. A header that needs another page
  // takes a copy of the file, refused with file_error "cannot create file".
  /// A default of the other width that the precision cannot hold throws com_error.
  virtual std::uint64_t addNumericField(const wide& name, float default_value) = 0;
  virtual std::uint64_t addNumericField(const wide& name, double default_value) = 0;
  /// `width` in characters, rounded up to words of 4; 0 takes one word, a negative one is refused. The
  /// default is cut to the words or filled with blanks.
  virtual std::uint64_t addAlphaField(const wide& name, std::int64_t width, const wide& default_value) = 0;
  /// Cuts the table to `rows`; false when it has fewer.
  virtual bool onSetRowCount(std::uint64_t rows) = 0;
  /// Writes changed rows back, then the header.
  virtual void flush() = 0;
  /// The same, and waits until the disk has the one, and then the other.
  virtual void sync() = 0;

  // The cursor. A move whose row cannot be read throws the reason; every access then throws it again
  // until a move succeeds.
  std::uint64_t currentRow() const noexcept { return current_; }
  /// Row 1, or row 0 of an empty table.
  void firstRow();
  void lastRow();
  void nextRow();
  void previousRow();
  void goToRow(std::uint64_t row);

  bool isDouble() const noexcept { return is_double_; }
  /// Changes of a table opened so stay in memory.
  bool isReadOnly() const noexcept { return is_read_only_; }
  virtual table_facts facts() = 0;

  /// The header's names, description and owner: its text words, byte for byte.
  virtual std::vector<std::byte> headerTexts() = 0;
  /// Copies the current row's record as a new table of the same fields has it after every value was put
  /// there: fields in their order, numbers in native order, texts put anew.
  virtual void readFreshRecord(std::byte* buffer) = 0;
  std::size_t recordBytes() const noexcept { return record_bytes_; }

  // Blocks of rows (row_blocks.h). The cursor stays.
  virtual const table_fields& fields() const noexcept = 0;
  /// Of the numbers in records.
  virtual byte_order order() const noexcept = 0;
  /// Hands the records of rows `first` to `first + rows - 1`, which exist, to `take` in their order. A row
  /// that cannot be read throws what a move to it would.
  virtual void readRows(std::uint64_t first, std::uint64_t rows, block_buffer& buffer,
                        const record_reader& take) = 0;
  /// Rows that a table of these fields can take yet.
  virtual std::uint64_t roomForRows() const noexcept = 0;
  /// Begins to append; what was begun before is given up. Every change of the table (another `version`)
  /// and its destruction give the rows up as well, and the two calls below then throw MyExceptionClass.
  virtual void beginRows() = 0;
  /// Puts rows behind those put so far; `fill` is given each of them once, and must not touch the table.
  /// Throws what `addRow` throws for more than there is room for. After a failure they can be given up alone.
  virtual void putRows(std::uint64_t rows, const record_writer& fill) = 0;
  /// Makes them count; a failure throws and leaves them to be given up.
  virtual void commitRows() = 0;
  /// Makes the file what it was, but for bytes that no count includes. Does nothing when nothing was begun.
  virtual void giveUpRows() noexcept = 0;
  virtual table_version version() const noexcept = 0;
  /// Of the open file itself, whatever stands under its name. False when the system does not tell.
  virtual bool stamp(file_stamp& found) noexcept = 0;
  /// Forgets what was read of the rows, so that what others have changed in the file is seen; changes are
  /// written first. The cursor stays. False when others have changed the header too: then there may be rows
  /// that this object does not know. Throws when the header cannot be read.
  virtual bool readAgain() = 0;

  /// The place of a stored number of the current row, native byte order, for callers in a hurry; null
  /// when the long road has to be taken (text, implicit, other byte order, no row, bad index).
  const std::byte* storedNumber(std::uint64_t index) const noexcept {
    if (index >= columns_.size() || record_ == nullptr) return nullptr;
    const column& wanted = columns_[static_cast<std::size_t>(index)];
    return wanted.plain_number ? record_ + wanted.offset : nullptr;
  }

 protected:
  /// What a typed access needs of a field, resolved once.
  struct column {
    std::uint32_t offset = 0;  ///< bytes into the record
    bool plain_number = false;
  };

  /// Puts the record of a row that exists into reach: sets the members below, or throws.
  virtual void locate(std::uint64_t row) = 0;
  /// Drops the current record; accesses fail until the next move.
  void drop_record(std::exception_ptr reason) noexcept;
  /// Makes `row` current and puts its record into reach.
  void load(std::uint64_t row);
  /// Puts the current row's record into reach again if that is possible.
  void restore_record() noexcept;
  /// The record of the current row; throws when none is held.
  std::byte* record() const {
    if (record_ == nullptr) fail_without_record();
    return record_;
  }
  [[noreturn]] void fail_without_record() const;

  bool is_double_ = false;
  bool is_read_only_ = false;
  std::vector<column> columns_;
  std::uint64_t current_ = 0;
  std::byte* record_ = nullptr;
  std::uint64_t rows_left_in_page_ = 0;  ///< behind the current one
  std::size_t record_bytes_ = 0;

 private:
  void next_row_elsewhere();

  std::exception_ptr load_failure_;
};

inline void table::nextRow() {
  if (rows_left_in_page_ == 0) {
    next_row_elsewhere();
    return;
  }
  --rows_left_in_page_;
  ++current_;
  record_ += record_bytes_;
}

}  // namespace ovf
