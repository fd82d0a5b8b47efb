#include "table/table_edits.h"

#include <algorithm>
#include <numeric>

#include "table/column_values.h"
#include "table/row_copy.h"
#include "table/schema_transfer.h"
#include "table/sort_order.h"

namespace ovf {
namespace {

/// Each column from itself.
std::vector<column_origin> same_columns(IOvSchema& schema) {
  LONG count = 0;
  (void)schema.get_FieldCount(&count);
  std::vector<column_origin> origins;
  for (LONG column = 1; column <= count; ++column) origins.push_back({column});
  return origins;
}

/// A text that has its first word in the header alone, and others in the rows, shows as implicit: the new
/// table has all of it in the rows, where it would lose the others else.
table_definition definition_under(IOvSchema& schema, table& from, std::span<const column_origin> origins) {
  table_definition definition = definition_of(schema);
  for (std::size_t i = 0; i < std::min(origins.size(), definition.fields.size()); ++i) {
    const auto column = static_cast<std::size_t>(origins[i].column);
    if (column == 0 || column > from.fields().size()) continue;
    const field& origin = from.fields().at(field_index(origins[i].column));
    if (origin.is_implicit() && origin.has_stored_words()) definition.fields[i].implicit = false;
  }
  return definition;
}

void copy_under(IOvSchema& schema, table& from, table_replacement& made, std::span<const std::uint32_t> rows,
                work_progress& work, bool keep_description) {
  const std::vector<column_origin> origins = same_columns(schema);
  table& copy = made.begin(definition_under(schema, from, origins), keep_description);
  if (have_like_records(from, copy)) {
    copy_rows(from, copy, rows, work);
  } else {
    copy_cells(from, copy, {origins, long_texts::cut, cell_road::variants}, rows, work);
  }
  work.finish();
  made.commit();
}

}  // namespace

void keep_rows(table_core& core, IOvSchema& schema, std::span<const std::uint32_t> rows,
               bool keep_description) {
  table_replacement made(core);
  work_progress work(core.progress, rows.size() * steps_per_copied_row);
  copy_under(schema, core.opened(), made, rows, work, keep_description);
}

void sort_table(table_core& core, LONG column, bool ascending) {
  kept_cursor cursor(core);
  // The file as it is now is sorted, with what others have written since it was opened.
  open_again(core);
  table_replacement made(core);
  // What a host has done to the schema that it holds is not in the file.
  const auto schema = schema_of(core.opened());
  work_progress work(core.progress, core.opened().getRowCount() * (1 + steps_per_copied_row));
  const std::vector<std::uint32_t> rows = sorted_rows(core.opened(), field_index(column), ascending, work);
  copy_under(*schema.get(), core.opened(), made, rows, work, true);
  cursor.give_up();
}

void rebuild_table(table_core& core, IOvSchema& schema, const cell_plan& plan,
                   std::span<const std::uint32_t> rows, bool keep_description) {
  table_replacement made(core);
  work_progress work(core.progress, rows.size() * steps_per_copied_row);
  table& copy = made.begin(definition_under(schema, core.opened(), plan.origins), keep_description);
  copy_cells(core.opened(), copy, plan, rows, work);
  work.finish();
  made.commit();
}

std::vector<std::uint32_t> all_rows(table_core& core) {
  const kept_cursor cursor(core);
  core.opened().lastRow();
  std::vector<std::uint32_t> rows(static_cast<std::size_t>(core.opened().getRowCount()));
  std::iota(rows.begin(), rows.end(), 1U);
  return rows;
}

}  // namespace ovf
