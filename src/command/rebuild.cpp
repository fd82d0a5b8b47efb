#include "rebuild.h"

#include "console.h"

namespace command {

void rebuild(const table_view& view, const std::vector<LONG>* rows, IOvSchema* schema,
             const std::vector<LONG>& columns) {
  const interrupt_guard guard;
  const auto maintenance = ovfile::pointer<IOvTable>(&view.table()).query<IOvTableMaintenance>();
  if (!maintenance) view.check(E_NOINTERFACE);
  const LONG none = 0;  // a list without rows is not the absence of a list
  const LONG* const row_of = rows == nullptr ? nullptr : rows->empty() ? &none : rows->data();
  view.check_copied(maintenance->Rebuild(schema, static_cast<LONG>(columns.size()),
                                         columns.empty() ? nullptr : columns.data(),
                                         rows == nullptr ? 0 : static_cast<LONG>(rows->size()), row_of));
  view.close();
}

}  // namespace command
