// What the getters of a table say of every value, for streams to be held against.
#pragma once

#include "read_columns.h"
#include "support/component.h"

namespace ovtest {

/// A value as `GetColumnAsFloat`, `GetColumnAsDouble` and `GetColumnAsString` give it.
struct got_cell {
  bool is_text = false;
  bool is_single = false;
  float single = 0;
  double number = 0;
  std::string text;
};

struct got_table {
  std::vector<std::vector<got_cell>> columns;
  std::optional<std::string> failure;  ///< why a row could not be read
};

inline got_cell get_cell(IOvTable& table, LONG column, OvColumnType type) {
  got_cell cell;
  cell.is_text = type == ovColumnString;
  cell.is_single = type == ovColumnSingle;
  if (cell.is_text) {
    bstr text;
    EXPECT_EQ(table.GetColumnAsString(column, text.out()), S_OK);
    cell.text = text.utf8();
  } else {
    const HRESULT got = cell.is_single ? table.GetColumnAsFloat(column, &cell.single) : S_OK;
    EXPECT_EQ(got, S_OK);
    EXPECT_EQ(table.GetColumnAsDouble(column, &cell.number), S_OK);
  }
  return cell;
}

inline got_table get_all(IOvTable& table) {
  owned<IOvSchema> schema;
  EXPECT_EQ(table.get_Schema(schema.out()), S_OK);
  LONG columns = 0;
  LONG rows = 0;
  schema->get_FieldCount(&columns);
  table.GetRowCount(&rows);
  got_table found;
  found.columns.resize(static_cast<std::size_t>(columns));
  for (LONG row = 1; row <= rows; ++row) {
    clear_error();
    table.GetRowAt(row);
    const std::string failure = take_error_text();
    if (!failure.empty()) {
      found.failure = failure;
      return found;
    }
    for (LONG column = 1; column <= columns; ++column) {
      OvColumnType type{};
      schema->GetFieldType(column, &type);
      found.columns[static_cast<std::size_t>(column - 1)].push_back(get_cell(table, column, type));
    }
  }
  return found;
}

inline std::string without_blanks(std::string text) {
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

/// What a stream with these flags has to give for it.
inline read_cell expected_cell_of(const got_cell& cell, ULONG flags) {
  const bool nulls = (flags & ovStreamAbsentAsNull) != 0;
  if (cell.is_text) {
    if (nulls && without_blanks(cell.text).empty()) return null_cell();
    return text_cell_of((flags & ovStreamTrailingBlanks) != 0 ? cell.text : without_blanks(cell.text));
  }
  if (cell.is_single) {
    if (nulls && cell.single == -1e30F) return null_cell();
    return (flags & ovStreamWidened) != 0 ? double_cell(cell.number) : float_cell(cell.single);
  }
  return nulls && cell.number == -1e30 ? null_cell() : double_cell(cell.number);
}

/// Holds the streams of an open table against its getters: every flag with batches of the library's choice,
/// and small ones without flags.
inline void expect_streams_like_getters(const owned<IOvTable>& table, const std::vector<LONG>& batch_rows) {
  const got_table got = get_all(*table);
  table->GetFirstRow();
  LONG before = -1;
  table->GetCurrentRow(&before);
  const auto check = [&](const OvStreamRequest& request) {
    if (got.failure) {
      try {
        (void)read_all(ovfile::read_stream(table, request));
        ADD_FAILURE() << "rows were read that are not there";
      } catch (const ovfile::error& failure) {
        EXPECT_EQ(failure.what(), *got.failure);
      }
      return;
    }
    const read_table found = read_all(ovfile::read_stream(table, request));
    ASSERT_EQ(found.cells.size(), got.columns.size());
    for (std::size_t c = 0; c < found.cells.size(); ++c) {
      ASSERT_EQ(found.cells[c].size(), got.columns[c].size());
      for (std::size_t row = 0; row < found.cells[c].size(); ++row) {
        ASSERT_EQ(found.cells[c][row], expected_cell_of(got.columns[c][row], request.flags))
            << "flags " << request.flags << ", column " << c + 1 << ", row " << row + 1;
      }
    }
  };
  OvStreamRequest request;
  for (request.flags = 0; request.flags < 16; ++request.flags) check(request);
  request.flags = 0;
  for (const LONG rows : batch_rows) {
    request.rowsPerBatch = rows;
    check(request);
  }
  LONG after = -2;
  table->GetCurrentRow(&after);
  EXPECT_EQ(before, after);
}

}  // namespace ovtest
