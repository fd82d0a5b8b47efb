// An open table, with its fields and a cursor, and its cells as UTF-8 text. Failures throw
// `failure` with the file, and with row and column where there are such.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "field_view.h"
#include "ovfile/smart.h"

namespace command {

/// What a command wants of the table's file.
enum class table_access { read, change };

class table_view {
 public:
  explicit table_view(std::string file, table_access access = table_access::read);

  const std::string& file() const noexcept { return file_; }
  LONG rows() const noexcept { return rows_; }
  bool is_single() const noexcept { return single_; }
  const std::vector<field_view>& fields() const noexcept { return fields_; }
  IOvTable& table() const noexcept { return *table_.get(); }
  /// The table's own schema.
  ovfile::pointer<IOvSchema> schema() const;
  /// What the file looks like.
  OvTableFacts facts() const;
  /// Rows that the library reads: fewer than `rows()` where the file is shorter than its header promises.
  LONG rows_in_file() const;
  /// The same with those of a page in which the file ends, of which the library reads none.
  LONG rows_held() const;
  /// The name of the file that has the rows: a link's target.
  std::string target() const;
  /// Throws `failure` where it is: for who is about to make room for all rows.
  void require_whole_file() const;
  /// All that the file has of it (a schema lacks the last characters), without blanks at the end.
  std::string description() const;
  /// The fields of these names in this order; all where there are none.
  std::vector<field_view> choose(const std::vector<std::string>& names) const;

  /// The field of this name. Throws `failure` that tells which names are near it, and `wrong_usage` when the
  /// name is empty.
  const field_view& field(const std::string& name) const;
  /// Throws `failure` when the table cannot have a new field of this name.
  void check_new_name(const std::string& name) const;

  /// Row numbers count from 1; the row must exist.
  void go_to(LONG row);
  /// To the row behind the current one, which must exist.
  void go_on();
  /// The current row's cell: a number in its shortest form, `absent` for one that is absent, a text
  /// without blanks at its end.
  void append_cell(std::string& out, const field_view& field, std::string_view absent) const;
  /// The current row's number, a float as it is.
  double number(const field_view& field) const;
  /// The current row's text without blanks at its end, appended as UTF-8.
  void append_text(std::string& out, const field_view& field) const;
  /// The same as the table keeps it, filled up with blanks.
  void read_text(ovfile::text& out, const field_view& field) const {
    check_at(&field, table_->GetColumnAsString(field.column, out.out()));
  }
  /// Throws what a failed call says, with the file's name.
  void check(HRESULT status) const { check_call(file_, status); }
  /// The same for a call that may have to put a copy in the file's place, with the system's reason where it
  /// could not. The table is not open any more then.
  void check_copied(HRESULT status) const;
  /// The same for a call that concerns the current row, which the message names.
  void check_at(const field_view* field, HRESULT status) const {
    if (FAILED(status)) fail_at(field, status);
  }
  /// Writes what was changed, lets go of the file, and returns when the disk has it all.
  void close() const;

 private:
  void open(table_access access);
  [[noreturn]] void fail_at(const field_view* field, HRESULT status) const;

  std::string file_;
  ovfile::pointer<IOvTable> table_;
  LONG rows_ = 0;
  LONG row_ = 1;
  bool single_ = false;
  std::vector<field_view> fields_;
};

}  // namespace command
