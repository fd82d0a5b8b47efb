#include "storage/file_error.h"
#include "table/edit_words.h"
#include "table/ov_table.h"
#include "table/table_edits.h"

namespace ovf {
namespace {

// Hosts know these words, some of which speak of another method.
constexpr wide_view delete_read_only = OLESTR("DeleteRow failed, file open in read-only mode");
constexpr wide_view delete_bad_index = OLESTR("DeleteRow failed, invalid row index");
constexpr wide_view no_such_column = OLESTR("index out of range, field not found.");
constexpr edit_words sort_words{
    .no_copy = OLESTR("DeleteRow failed, creating temp file"),
    .not_replaced = OLESTR("Sort failed. Could not delete temp file: "),
    .not_reopened = OLESTR("Sort failed, new table invalid"),
    .not_restored = OLESTR("Sort failed, new table invalid"),
    .stopped = OLESTR("Sort failed, it was stopped"),
};

}  // namespace

HRESULT COvTable::Sort(LONG lIndex, VARIANT_BOOL bAscending) {
  if (core_.is_read_only()) return report(*this, delete_read_only);
  return guard(*this, [&]() -> HRESULT {
    // The column is held against the rows: hosts have always been refused so.
    if (lIndex < 1 || lIndex > long_of(core_.opened().getRowCount())) return report(*this, delete_bad_index);
    if (static_cast<std::uint64_t>(lIndex) > core_.opened().getFieldCount()) {
      return report(*this, no_such_column);
    }
    return run_edit(*this, sort_words, [&] { sort_table(core_, lIndex, bAscending != VARIANT_FALSE); });
  });
}

}  // namespace ovf
