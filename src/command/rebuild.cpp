#include "rebuild.h"

#include "console.h"
#include "long_call.h"

namespace command {

namespace {

/// `call` gets the table and rebuilds it.
template <class Call>
void rebuild(const table_view& view, Call call) {
  const interrupt_guard guard;
  const long_call shown(view, "writing");
  const auto maintenance = ovfile::pointer<IOvTable>(&view.table()).query<IOvTableMaintenance>();
  const HRESULT status = maintenance ? call(*maintenance.get()) : E_NOINTERFACE;
  long_call::throw_if_stopped(status);
  view.check_copied(status);
  view.close();
}

/// A list without entries is not the absence of a list, which null would be.
const LONG* begin_of(const std::vector<LONG>& list) noexcept {
  static constexpr LONG none = 0;
  return list.empty() ? &none : list.data();
}

}  // namespace

void keep_rows(const table_view& view, const std::vector<LONG>& rows) {
  rebuild(view, [&rows](IOvTableMaintenance& table) {
    return table.Rebuild(nullptr, 0, nullptr, static_cast<LONG>(rows.size()), begin_of(rows));
  });
}

void rebuild_columns(const table_view& view, IOvSchema& schema, const std::vector<LONG>& columns) {
  rebuild(view, [&](IOvTableMaintenance& table) {
    return table.Rebuild(&schema, static_cast<LONG>(columns.size()), begin_of(columns), 0, nullptr);
  });
}

}  // namespace command
