#include "table/rebuild_request.h"

#include <algorithm>
#include <optional>

#include "table/schema_transfer.h"
#include "table/table_edits.h"

namespace ovf {
namespace {

constexpr wide_view read_only = OLESTR("Rebuild failed, file is open in read-only mode");
constexpr wide_view wrong_columns = OLESTR("Rebuild failed, the schema has %d columns and not %d");
constexpr wide_view bad_column = OLESTR("Rebuild failed, column %d of the new table comes from column %d");
constexpr wide_view bad_count = OLESTR("Rebuild failed, %d is no number of rows");
constexpr wide_view bad_row = OLESTR("Rebuild failed, row %d does not exist");
constexpr wide_view row_twice = OLESTR("Rebuild failed, row %d is named twice");
constexpr wide_view bad_rebuilt_value = OLESTR("Rebuild failed, row %d, column %d: %s");

template <class... Values>
[[noreturn]] void fail(wide_view pattern, const Values&... values) {
  wide_format message(pattern);
  (message.arg(values), ...);
  throw MyExceptionClass(message.text());
}

std::vector<std::uint32_t> rows_of(table_core& core, const rebuild_request& request) {
  if (request.row_of == nullptr) return all_rows(core);
  if (request.rows < 0) fail(bad_count, static_cast<long long>(request.rows));
  std::vector<std::uint32_t> rows;
  if (request.rows == 0) return rows;  // of a file that has lost its rows too
  const std::size_t count = all_rows(core).size();
  std::vector<bool> named(count + 1);
  rows.reserve(std::min(count, static_cast<std::size_t>(request.rows)));
  for (LONG i = 0; i < request.rows; ++i) {
    const LONG row = request.row_of[i];
    if (row < 1 || static_cast<std::size_t>(row) >= named.size()) fail(bad_row, static_cast<long long>(row));
    if (named[static_cast<std::size_t>(row)]) fail(row_twice, static_cast<long long>(row));
    named[static_cast<std::size_t>(row)] = true;
    rows.push_back(static_cast<std::uint32_t>(row));
  }
  return rows;
}

/// By name, the default for a name that the table lacks.
LONG column_named(table& from, IOvSchema& schema, LONG column) {
  ovfile::text name;
  throw_on_failure(schema.GetFieldName(column, name.out()));
  for (std::uint64_t i = 0; i < from.getFieldCount(); ++i) {
    if (from.getFieldName(i) == name.view()) return static_cast<LONG>(i + 1);
  }
  return 0;
}

std::vector<column_origin> origins_of(table& from, IOvSchema& schema, const rebuild_request& request) {
  LONG count = 0;
  throw_on_failure(schema.get_FieldCount(&count));
  if (request.column_of != nullptr && request.columns != count) {
    fail(wrong_columns, static_cast<long long>(count), static_cast<long long>(request.columns));
  }
  std::vector<column_origin> origins;
  for (LONG column = 1; column <= count; ++column) {
    column_origin origin;
    throw_on_failure(schema.GetFieldType(column, &origin.type));
    origin.column =
        request.column_of != nullptr ? request.column_of[column - 1] : column_named(from, schema, column);
    if (origin.column < 0 || static_cast<std::uint64_t>(origin.column) > from.getFieldCount()) {
      fail(bad_column, static_cast<long long>(column), static_cast<long long>(origin.column));
    }
    origins.push_back(origin);
  }
  return origins;
}

/// A schema without a description leaves the table's own as it is, to the last character.
bool describes(IOvSchema& schema, const rebuild_request& request) {
  if (request.schema == nullptr) return false;
  ovfile::text description;
  throw_on_failure(schema.get_Description(description.out()));
  return !description.view().empty();
}

void run(table_core& core, const rebuild_request& request) {
  const std::vector<std::uint32_t> rows = rows_of(core, request);
  const auto schema = request.schema != nullptr ? copy_of(*request.schema) : schema_of(core.opened());
  if (request.schema == nullptr && request.column_of == nullptr)
    return keep_rows(core, *schema.get(), rows, true);
  const std::vector<column_origin> origins = origins_of(core.opened(), *schema.get(), request);
  rebuild_table(core, *schema.get(), {origins, long_texts::refused}, rows,
                !describes(*schema.get(), request));
}

}  // namespace

void rebuild(table_core& core, const rebuild_request& request) {
  (void)core.opened();
  if (core.is_read_only()) fail(read_only);
  try {
    run(core, request);
  } catch (const cell_error& error) {
    fail(bad_rebuilt_value, static_cast<long long>(error.row()), static_cast<long long>(error.column()),
         wide_view(error.message()));
  }
}

}  // namespace ovf
