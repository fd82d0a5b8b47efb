#include "table/ov_table.h"
#include "table/repair_plan.h"
#include "table/schema_transfer.h"
#include "table/table_edits.h"

namespace ovf {
namespace {

constexpr wide_view no_copy_object = OLESTR("Repair failed, creating temp table object");
constexpr wide_view replacing_failed = OLESTR("Repair failed. Could not delete temp file: ");
constexpr wide_view reopening_failed = OLESTR("DeleteColumns failed, new table invalid");

}  // namespace

HRESULT COvTable::Repair(IOvSchema* pSchema) {
  if (pSchema == nullptr || !core_.schema) return S_OK;
  if (core_.is_read_only()) return report(*this, message_id::read_only_file);
  return guard(*this, [&]() -> HRESULT {
    const auto origins = repair_plan(*core_.schema.get(), *pSchema);
    if (!origins) return S_OK;
    std::vector<std::uint32_t> rows = all_rows(core_);
    // The last row is left behind: hosts add one before they repair.
    if (!rows.empty()) rows.pop_back();
    try {
      rebuild_table(core_, *copy_of(*pSchema).get(), *origins, rows, false);
      return S_OK;
    } catch (const no_copy_made&) {
      return report(*this, no_copy_object);
    } catch (const not_replaced&) {
      return report(*this, replacing_failed);
    } catch (const not_reopened&) {
      return report(*this, reopening_failed);
    }
  });
}

}  // namespace ovf
