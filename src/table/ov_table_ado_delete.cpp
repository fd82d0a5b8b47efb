#include "platform/system_error.h"
#include "storage/file_error.h"
#include "table/ov_table_ado.h"
#include "table/table_edits.h"

namespace ovf {
namespace {

constexpr wide_view read_only_refused = OLESTR("Error: DeleteRow failed, file open in read-only mode.");
constexpr wide_view bad_index = OLESTR("Error: DeleteRow failed, invalid row index.");
constexpr wide_view copy_failed = OLESTR("Error: DeleteRow failed, creating temp file.");
constexpr wide_view replacing_failed = OLESTR("Error: DeleteRow failed. Could not delete file: %s (%s)");
constexpr wide_view reopening_failed = OLESTR("Error: DeleteRow failed, new table invalid.");

wide replacing_message(const not_replaced& refusal) {
  return wide_format(replacing_failed).arg(wide_view(refusal.path)).arg(system_message(refusal.code)).text();
}

}  // namespace

HRESULT COvTableADO::DeleteRow(LONG lRow) {
  if (core_.is_read_only()) return report(*this, read_only_refused);
  return guard(*this, [&]() -> HRESULT {
    std::vector<std::uint32_t> rows = all_rows(core_);
    if (lRow < 1 || static_cast<std::size_t>(lRow) > rows.size()) return report(*this, bad_index);
    rows.erase(rows.begin() + (lRow - 1));
    try {
      if (!core_.schema) throw no_copy_made();
      keep_rows(core_, *core_.schema.get(), rows);
      return S_OK;
    } catch (const no_copy_made&) {
      return report(*this, copy_failed);
    } catch (const not_replaced& refusal) {
      return report(*this, wide_view(replacing_message(refusal)));
    } catch (const not_reopened&) {
      return report(*this, reopening_failed);
    }
  });
}

}  // namespace ovf
