// Methods that both table objects have, with the same answers but messages of their own.
#pragma once

#include "server/report_error.h"
#include "storage/file_error.h"
#include "table/column_values.h"
#include "table/table_core.h"

namespace ovf::shared {

inline HRESULT get_schema(const table_core& core, IOvSchema** out) noexcept {
  if (out == nullptr) return E_POINTER;
  *out = ovfile::pointer<IOvSchema>(core.schema).release();
  return S_OK;
}

/// Takes over the caller's reference.
inline HRESULT put_schema(table_core& core, IOvSchema* schema) noexcept {
  *core.schema.out() = schema;
  return S_OK;
}

/// A reference of its own, held until the next one or null.
inline HRESULT set_progress(table_core& core, IOvProgress* sink) noexcept {
  core.progress = ovfile::pointer<IOvProgress>(sink);
  return S_OK;
}

template <class Class>
HRESULT get_name(const Class& object, const table_core& core, BSTR* out) noexcept {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  return guard(object, [&] { *out = bstr_or_null(core.name); });
}

template <class Class>
HRESULT put_name(const Class& object, table_core& core, BSTR name) noexcept {
  return guard(object, [&] { core.name = view_of(name); });
}

/// EOF and BOF. True is 1 here, not VARIANT_TRUE: that is what hosts have always got.
template <class Class>
HRESULT get_flag(const Class& object, const table_core& core, bool flag, VARIANT_BOOL* out) noexcept {
  if (out == nullptr) return E_POINTER;
  *out = 0;
  return guard(object, [&] { *out = core.opened().getRowCount() == 0 || flag ? 1 : 0; });
}

template <class Class>
HRESULT get_row_count(const Class& object, const table_core& core, LONG* out) noexcept {
  if (out == nullptr) return E_POINTER;
  *out = 0;
  return guard(object, [&] { *out = long_of(core.opened().getRowCount()); });
}

/// Runs `body` on a valid cursor; reports `refusal` otherwise.
template <class Class, class Body>
HRESULT on_a_row(const Class& object, const table_core& core, wide_view refusal, Body&& body) noexcept {
  if (!core.on_a_row()) return report(object, refusal);
  return guard(object, std::forward<Body>(body));
}

template <class Class>
HRESULT get_current_row(const Class& object, const table_core& core, wide_view refusal, LONG* out) noexcept {
  if (out == nullptr) return E_POINTER;
  *out = 0;
  return on_a_row(object, core, refusal, [&] { *out = long_of(core.opened().currentRow()); });
}

/// A row that cannot be read is reported, and the status stays what it was: hosts rely on it.
template <class Class>
HRESULT move_to(const Class& object, table_core& core, LONG row) noexcept {
  if (!core.is_open()) return S_OK;
  HRESULT status = S_OK;
  (void)guard(object, [&] { status = core.row_at(row) == move::on_a_row ? S_OK : S_FALSE; });
  return status;
}

template <class Class>
HRESULT move_to_last(const Class& object, table_core& core) noexcept {
  if (!core.is_open()) return S_OK;
  return guard(object, [&] { core.last_row(); });
}

template <class Class>
HRESULT move_to_previous(const Class& object, table_core& core, wide_view refusal) noexcept {
  if (!core.on_a_row()) return report(object, refusal);
  if (!core.is_open()) return S_OK;
  return guard(object, [&] { return core.previous_row() == move::off_the_end ? S_FALSE : S_OK; });
}

template <class Class>
HRESULT add_row(const Class& object, table_core& core, wide_view refusal) noexcept {
  if (core.is_read_only()) return report(object, refusal);
  return guard(object, [&] { core.add_row(); });
}

template <class Class>
HRESULT get_column(const Class& object, const table_core& core, wide_view refusal, LONG column,
                   VARIANT* out) noexcept {
  if (out == nullptr) return E_POINTER;
  VariantInit(out);
  return on_a_row(object, core, refusal, [&] { *out = column_value(core.opened(), column).release(); });
}

template <class Class>
HRESULT close(const Class& object, table_core& core, wide_view failure) noexcept {
  try {
    core.close();
    return S_OK;
  } catch (...) {
    return report(object, failure);
  }
}

/// The facts about the open table; E_INVALIDARG for a structure of another size.
HRESULT get_facts(const table_core& core, OvTableFacts* out);

}  // namespace ovf::shared
