#include "table/table_edits.h"

#include "table/column_values.h"
#include "table/row_copy.h"
#include "table/schema_transfer.h"
#include "table/sort_order.h"

namespace ovf {
namespace {

table& begin_copy(table_replacement& made, const table_definition& definition, bool keep_description) {
  try {
    return made.begin(definition, keep_description);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception&) {
    throw no_copy_made();
  }
}

void commit(table_replacement& made, const table_core& core) {
  bool placed = false;
  try {
    placed = made.commit();
  } catch (...) {
    // What fails before the table is let go leaves it open, and has words of its own.
    if (core.is_open()) throw;
    throw not_reopened();
  }
  if (!placed) throw not_replaced{made.path(), made.refusal()};
}

/// The getters and setters through which the values of a schema's own columns go.
std::vector<column_origin> same_columns(IOvSchema& schema) {
  LONG count = 0;
  (void)schema.get_FieldCount(&count);
  std::vector<column_origin> origins;
  for (LONG column = 1; column <= count; ++column) {
    column_origin origin{column, ovColumnDouble};
    (void)schema.GetFieldType(column, &origin.type);
    origins.push_back(origin);
  }
  return origins;
}

/// The current row survives a copy that fails.
class kept_row {
 public:
  explicit kept_row(table_core& core) : core_(core), row_(core.opened().currentRow()) {}
  ~kept_row() {
    if (!core_.is_open() || done_ || row_ == 0) return;
    try {
      core_.opened().goToRow(row_);
    } catch (...) {
      // The next access says why.
    }
  }
  kept_row(const kept_row&) = delete;
  kept_row& operator=(const kept_row&) = delete;
  void done() noexcept { done_ = true; }

 private:
  table_core& core_;
  std::uint64_t row_;
  bool done_ = false;
};

}  // namespace

void keep_rows(table_core& core, std::span<const std::uint32_t> rows) {
  kept_row current(core);
  table_replacement made(core);
  table& copy = begin_copy(made, definition_of(*core.schema.get()), true);
  if (have_like_records(core.opened(), copy)) {
    copy_rows(core.opened(), copy, rows);
  } else {
    copy_cells(core.opened(), copy, same_columns(*core.schema.get()), rows);
  }
  commit(made, core);
  current.done();
}

void sort_table(table_core& core, LONG column, bool ascending) {
  kept_row current(core);
  const std::vector<std::uint32_t> rows = sorted_rows(core.opened(), field_index(column), ascending);
  keep_rows(core, rows);
  current.done();
}

void rebuild_table(table_core& core, IOvSchema& schema, std::span<const column_origin> origins,
                   std::span<const std::uint32_t> rows, bool keep_description) {
  kept_row current(core);
  table_replacement made(core);
  table& copy = begin_copy(made, definition_of(schema), keep_description);
  copy_cells(core.opened(), copy, origins, rows);
  commit(made, core);
  current.done();
}

}  // namespace ovf
