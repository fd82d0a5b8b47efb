// A table opened for reading, with its fields and a cursor, and its cells as UTF-8 text. Failures throw
// `failure` with the file, and with row and column where there are such.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ovfile/smart.h"

namespace command {

struct field_view {
  LONG column;  ///< from 1
  std::string name;
  bool is_text;
  LONG width;  ///< characters; of a number the 4 that its word would hold
  bool implicit;
  double number_default;
  std::string text_default;  ///< UTF-8, without blanks at the end
};

class table_view {
 public:
  /// Opens the file read-only.
  explicit table_view(std::string file);

  const std::string& file() const noexcept { return file_; }
  LONG rows() const noexcept { return rows_; }
  bool is_single() const noexcept { return single_; }
  const std::vector<field_view>& fields() const noexcept { return fields_; }
  IOvTable& table() const noexcept { return *table_.get(); }
  /// The fields of these names in this order; all where there are none.
  std::vector<field_view> choose(const std::vector<std::string>& names) const;

  /// Row numbers count from 1; the row must exist.
  void go_to(LONG row);
  /// To the row behind the current one, which must exist.
  void go_on();
  /// The current row's cell: a number in its shortest form, `absent` for one that is absent, a text
  /// without blanks at its end.
  void append_cell(std::string& out, const field_view& field, std::string_view absent) const;
  /// Throws what a failed call says, with the file's name.
  void check(HRESULT status) const;

 private:
  void read_fields();
  field_view read_field(IOvSchema& schema, LONG column) const;
  void append_text(std::string& out, const field_view& field) const;
  [[noreturn]] void fail_at(const field_view* field, HRESULT status) const;

  std::string file_;
  ovfile::pointer<IOvTable> table_;
  LONG rows_ = 0;
  LONG row_ = 1;
  bool single_ = false;
  std::vector<field_view> fields_;
};

}  // namespace command
