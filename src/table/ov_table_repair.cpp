#include "table/edit_words.h"
#include "table/ov_table.h"
#include "table/repair_plan.h"
#include "table/schema_transfer.h"
#include "table/table_edits.h"

namespace ovf {
namespace {

// Hosts know these words, one of which speaks of another method.
constexpr edit_words repair_words{
    .no_copy = OLESTR("Repair failed, creating temp table object"),
    .not_replaced = OLESTR("Repair failed. Could not delete temp file: "),
    .not_reopened = OLESTR("DeleteColumns failed, new table invalid"),
    .not_restored = OLESTR("DeleteColumns failed, new table invalid"),
    .stopped = OLESTR("Repair failed, it was stopped"),
};

}  // namespace

HRESULT COvTable::Repair(IOvSchema* pSchema) {
  if (pSchema == nullptr || !core_.schema) return S_OK;
  if (core_.is_read_only()) return report(*this, message_id::read_only_file);
  return guard(*this, [&]() -> HRESULT {
    auto origins = repair_plan(*core_.schema.get(), *pSchema);
    if (!origins) return S_OK;
    std::vector<std::uint32_t> rows = all_rows(core_);
    // The last row is left behind: hosts add one before they repair.
    if (!rows.empty()) rows.pop_back();
    return run_edit(*this, repair_words, [&] {
      const auto schema = copy_of(*pSchema);
      // A host's schema may answer differently each time: it is asked where there are values to read.
      if (!rows.empty()) read_types(*pSchema, *origins);
      rebuild_table(core_, *schema.get(), {*origins}, rows, false);
    });
  });
}

}  // namespace ovf
