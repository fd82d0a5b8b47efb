#include "storage/file_error.h"
#include "table/edit_words.h"
#include "table/ov_table_ado.h"
#include "table/table_edits.h"

namespace ovf {
namespace {

constexpr wide_view deletion_in_read_only_table =
    OLESTR("Error: DeleteRow failed, file open in read-only mode.");
constexpr wide_view ado_delete_bad_index = OLESTR("Error: DeleteRow failed, invalid row index.");
constexpr edit_words ado_delete_words{
    .no_copy = OLESTR("Error: DeleteRow failed, creating temp file."),
    .not_replaced = OLESTR("Error: DeleteRow failed. Could not delete file: %s (%s)"),
    .not_reopened = OLESTR("Error: DeleteRow failed, new table invalid."),
    .not_restored = OLESTR("Error: DeleteRow failed, new table invalid."),
    .stopped = OLESTR("Error: DeleteRow failed, it was stopped."),
};

/// A description that the host has given the schema goes into the new file; the table's own is carried over
/// to its last character, which no schema shows.
bool describes_anew(IOvSchema& schema, table& opened) {
  ovfile::text described;
  throw_on_failure(schema.get_Description(described.out()));
  const wide own = opened.getDescription();
  const auto end = own.find_last_not_of(OLESTR(' '));
  return !described.view().empty() && described.view() != wide_view(own).substr(0, end + 1);
}

}  // namespace

HRESULT COvTableADO::DeleteRow(LONG lRow) {
  if (core_.is_read_only()) return report(*this, deletion_in_read_only_table);
  return guard(*this, [&]() -> HRESULT {
    if (lRow < 1 || lRow > long_of(core_.opened().getRowCount())) return report(*this, ado_delete_bad_index);
    std::vector<std::uint32_t> rows = all_rows(core_);
    rows.erase(rows.begin() + (lRow - 1));
    return run_edit(*this, ado_delete_words, [&] {
      if (!core_.schema) throw no_copy_made();
      IOvSchema& schema = *core_.schema.get();
      keep_rows(core_, schema, rows, !describes_anew(schema, core_.opened()));
    });
  });
}

}  // namespace ovf
