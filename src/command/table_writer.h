// The second of an import's two passes: makes the table that the first one planned and fills it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "import_scan.h"
#include "ovfile/stream.h"

namespace command {

class table_writer {
 public:
  /// Makes an empty table in `file`; messages name `shown`. `plan` must outlive the writer. Throws
  /// `failure`.
  table_writer(const std::string& file, std::string shown, const import_plan& plan);

  /// Appends one row of a CSV; as many cells as the plan has stored fields. Throws `failure`, also when a
  /// cell is not what the plan says.
  void add_row(const std::vector<std::string_view>& cells);
  /// Appends the rows of a stream whose columns are called as the table's; returns how many they were.
  /// Throws `failure`, and `interrupted`.
  std::int64_t add_rows(ovfile::arrow_stream rows);
  /// Writes the rest and lets go of the file. Throws `failure`.
  void close();

 private:
  void check(HRESULT status) const;
  void add_fields(IOvSchema& schema);
  void add_field(IOvSchema& schema, const planned_field& field, bool implicit);
  void set_cell(LONG column, const planned_field& field, std::string_view cell);
  void set_number(LONG column, std::string_view cell);
  void set_text(LONG column, std::string_view cell);

  std::string shown_;
  const import_plan& plan_;
  ovfile::pointer<IOvTable> table_;
  ovfile::wide_string wide_;
};

}  // namespace command
