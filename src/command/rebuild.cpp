#include "rebuild.h"

#include "console.h"
#include "long_call.h"

namespace command {

void rebuild(const table_view& view, const std::vector<LONG>* rows, IOvSchema* schema,
             const std::vector<LONG>& columns) {
  const interrupt_guard guard;
  const long_call call(view, "writing");
  const auto maintenance = ovfile::pointer<IOvTable>(&view.table()).query<IOvTableMaintenance>();
  if (!maintenance) view.check(E_NOINTERFACE);
  const LONG none = 0;  // a list without rows is not the absence of a list
  const LONG* const row_of = rows == nullptr ? nullptr : rows->empty() ? &none : rows->data();
  const HRESULT status = maintenance->Rebuild(schema, static_cast<LONG>(columns.size()),
                                              columns.empty() ? nullptr : columns.data(),
                                              rows == nullptr ? 0 : static_cast<LONG>(rows->size()), row_of);
  long_call::throw_if_stopped(status);
  view.check_copied(status);
  view.close();
}

}  // namespace command
