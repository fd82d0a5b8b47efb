// Changes of an open table, each told by one byte, and what must be true of them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "memory_files.h"
#include "ovfile/smart.h"
#include "require.h"

namespace ovfuzz {

/// Every answer is a known one; memory must not run out over a small file.
inline bool is_answer(HRESULT status) { return status == S_OK || status == S_FALSE || status == E_FAIL; }

/// One change: its low three bits say what, the others how much or where.
struct step {
  unsigned what;
  LONG much;
};

/// The input's last bytes, from its end on; a byte 0 is no step.
inline std::vector<step> steps_of(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t most_steps = 16;
  std::vector<step> steps;
  for (std::size_t i = 0; i < std::min(size, most_steps); ++i) {
    const std::uint8_t byte = data[size - 1 - i];
    if (byte != 0) steps.push_back({byte & 7U, static_cast<LONG>(byte >> 3)});
  }
  return steps;
}

/// What of a table must outlive its closing.
struct outline {
  LONG rows = 0;
  std::vector<ovf::wide> names = {};
  bool operator==(const outline&) const = default;
};

inline outline outline_of(IOvTable& table) {
  outline result;
  ovfile::pointer<IOvSchema> schema;
  LONG count = 0;
  require(table.GetRowCount(&result.rows) == S_OK, "a table has a row count");
  require(table.get_Schema(schema.out()) == S_OK, "an open table has a schema");
  require(schema->get_FieldCount(&count) == S_OK, "with a number of fields");
  for (LONG i = 1; i <= count; ++i) {
    ovfile::text name;
    require(schema->GetFieldName(i, name.out()) == S_OK, "a field has a name");
    result.names.emplace_back(name.view());
  }
  return result;
}

class table_change {
 public:
  table_change(IOvTable& table, LONG columns) : table_(table), columns_(columns) {}

  void take(const step& next) {
    const outline before = outline_of(table_);
    switch (next.what) {
      case 0:
        return add_rows(next.much + 1, before);
      case 1:
        return add_numbers(2 * static_cast<std::size_t>(next.much) + 1);
      case 2:
        return add_text(24 * next.much);
      case 3:
        return rename(next.much, false);
      case 4:
        return rename(next.much, true);
      case 5:
        return set_default(next.much);
      case 6:
        return cut(std::max<LONG>(0, before.rows - next.much), before);
      default:
        return set_values(before.rows - next.much);
    }
  }

 private:
  /// A name that nobody has yet, nearly always.
  ovfile::text new_name(bool is_long) {
    return ovfile::text(ovfile::to_wide((is_long ? "A_LONG_NAME_" : "F") + std::to_string(++names_)));
  }

  /// Fields that were added count, one that was refused does not; no row comes or goes.
  void require_added(std::size_t added, const outline& before) {
    outline after = outline_of(table_);
    require(after.names.size() == before.names.size() + added, "the added fields are there");
    after.names.resize(before.names.size());
    require(after == before, "and everything else is as it was");
    columns_ += static_cast<LONG>(added);
  }

  void add_numbers(std::size_t number) {
    const outline before = outline_of(table_);
    HRESULT status = S_OK;
    std::size_t added = 0;
    while (status == S_OK && added < number) {
      const ovfile::text name = new_name(added % 2 == 1);
      status = added % 3 == 0 ? table_.AddImplicitNumericColumnFloat(name.get(), 0.5F)
                              : table_.AddImplicitNumericColumnDouble(name.get(), 1e30);
      require(status == S_OK || status == E_FAIL, "a field is added or refused");
      if (status == S_OK) ++added;
    }
    require_added(added, before);
  }

  void add_text(LONG length) {
    const outline before = outline_of(table_);
    const ovfile::text name = new_name(length % 48 == 0);
    const ovfile::text value(ovf::wide_view(OLESTR("weathered")));
    const HRESULT status = table_.AddImplicitStringColumn(name.get(), length - 1, value.get());
    require(status == S_OK || status == E_FAIL, "a field is added or refused");
    require_added(status == S_OK ? 1 : 0, before);
  }

  void rename(LONG column, bool is_long) {
    outline expected = outline_of(table_);
    const ovfile::text name = new_name(is_long);
    const HRESULT status = table_.SetColumnName(column, name.get());
    require(status == S_OK || status == E_FAIL, "a field is renamed or refused");
    if (status == S_OK) expected.names.at(static_cast<std::size_t>(column - 1)) = name.view();
    require(outline_of(table_) == expected, "a new name changes nothing else");
  }

  void set_default(LONG column) {
    const ovfile::text value(ovf::wide_view(OLESTR("12.5")));
    require(is_answer(table_.SetColumnDefaultFloat(column, -1.5F)), "a default is set or refused");
    require(is_answer(table_.SetColumnDefaultDouble(column, 2.5)), "a default is set or refused");
    require(is_answer(table_.SetColumnDefaultString(column, value.get())), "a default is set or refused");
  }

  void set_values(LONG row) {
    if (table_.GetRowAt(row) != S_OK) return;
    for (LONG i = 1; i <= std::min<LONG>(columns_, 6); ++i) {
      require(is_answer(table_.SetColumn(i, ovfile::variant(2.5).get())), "a value is written or refused");
    }
  }

  void add_rows(LONG number, const outline& before) {
    outline expected = before;
    for (LONG i = 0; i < number; ++i) {
      const HRESULT status = table_.AddRow();
      require(status == S_OK || status == E_FAIL, "a row is added or refused");
      if (status == S_OK) ++expected.rows;
    }
    require(outline_of(table_) == expected, "rows that were added count");
  }

  void cut(LONG rows, const outline& before) {
    const HRESULT status = table_.ReduceRowCountTo(rows);
    require(status == S_OK || status == E_FAIL, "rows are cut or stay");
    outline expected = before;
    if (status == S_OK) expected.rows = rows;
    require(outline_of(table_) == expected, "rows that were cut are gone, and nothing else");
  }

  IOvTable& table_;
  LONG columns_;
  int names_ = 0;
};

}  // namespace ovfuzz
