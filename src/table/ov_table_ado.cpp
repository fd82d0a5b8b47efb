#include "table/ov_table_ado.h"

#include "table/rebuild_request.h"
#include "table/shared_methods.h"

namespace ovf {
namespace {

constexpr wide_view ado_missing_file = OLESTR("Error: File does not exist.");
constexpr wide_view ado_close_failed = OLESTR("Error in COvTableADO::Close");
constexpr wide_view ado_no_definition = OLESTR("Error: Empty table definition (schema).");
constexpr wide_view ado_create_failed = OLESTR("Couldnt create file");
constexpr wide_view update_read_only = OLESTR("Error: Update failed, file open in read-only mode.");

}  // namespace

HRESULT COvTableADO::Open(BSTR filename, LONG ReadOnly) {
  return guard(*this, [&]() -> HRESULT {
    HRESULT filled = S_OK;
    const opening outcome = core_.open(view_of(filename), ReadOnly, filled);
    if (outcome == opening::missing) return report(*this, ado_missing_file);
    if (outcome == opening::not_a_table) return E_FAIL;
    // A row that cannot be read does not make the table unreadable: the move has reported it.
    (void)MoveFirst();
    return filled;
  });
}

HRESULT COvTableADO::Close() { return shared::close(*this, core_, ado_close_failed); }

HRESULT COvTableADO::Create(BSTR filename, IDispatch* tableDefinition) {
  return guard(*this, [&]() -> HRESULT {
    core_.name = view_of(filename);
    const auto definition = ovfile::pointer<IDispatch>(tableDefinition).query<IOvSchema>();
    if (!definition) return report(*this, ado_no_definition);
    const HRESULT status = guard(*this, [&] { core_.create(definition); });
    return FAILED(status) ? report(*this, ado_create_failed) : status;
  });
}

HRESULT COvTableADO::Update() {
  if (core_.is_read_only()) return report(*this, update_read_only);
  return guard(*this, [&]() -> HRESULT {
    const LONG row = long_of(core_.opened().currentRow());
    const wide path = core_.path();
    const HRESULT closed = Close();
    if (FAILED(closed)) return closed;
    try {
      core_.reopen(path);
    } catch (const table_core::not_open&) {
      return report(*this, ado_missing_file);
    }
    (void)MoveTo(row);
    return S_OK;
  });
}

HRESULT COvTableADO::get_Schema(IOvSchema** pVal) { return shared::get_schema(core_, pVal); }

HRESULT COvTableADO::put_Schema(IOvSchema* newVal) { return shared::put_schema(core_, newVal); }

HRESULT COvTableADO::get_Name(BSTR* pVal) { return shared::get_name(*this, core_, pVal); }

HRESULT COvTableADO::put_Name(BSTR newVal) { return shared::put_name(*this, core_, newVal); }

HRESULT COvTableADO::SetProgress(IOvProgress* pProgress) { return shared::set_progress(core_, pProgress); }

HRESULT COvTableADO::GetFacts(OvTableFacts* pFacts) {
  return guard(*this, [&] { return shared::get_facts(core_, pFacts); });
}

HRESULT COvTableADO::Rebuild(IOvSchema* pSchema, LONG nColumns, const LONG* pColumnOf, LONG nRows,
                             const LONG* pRowOf) {
  return run_edit(*this, rebuild_words, [&] {
    rebuild(core_, {pSchema, nColumns, pColumnOf, nRows, pRowOf});
  });
}

HRESULT COvTableADO::Sync() {
  return guard(*this, [&] { core_.opened().sync(); });
}

}  // namespace ovf
