#include "table/ov_table.h"

#include "table/rebuild_request.h"
#include "table/shared_methods.h"

namespace ovf {
namespace {

constexpr wide_view missing_file = OLESTR("File does not exist");
constexpr wide_view not_a_table = OLESTR("Not a valid orvexa table");
constexpr wide_view close_failed = OLESTR("Error in COvTable::Close");
constexpr wide_view no_definition = OLESTR("Empty table definition (schema)");
constexpr wide_view create_failed = OLESTR("Failed to create file");

}  // namespace

HRESULT COvTable::Open(BSTR filename, LONG ReadOnly) {
  return guard(*this, [&]() -> HRESULT {
    HRESULT filled = S_OK;
    const opening outcome = core_.open(view_of(filename), ReadOnly, filled);
    if (outcome == opening::missing) return report(*this, missing_file);
    if (outcome == opening::not_a_table) return report(*this, not_a_table);
    // A row that cannot be read does not make the table unreadable: the move has reported it.
    (void)GetFirstRow();
    (void)core_.schema->put_ReadOnly(ReadOnly != 0 ? VARIANT_TRUE : VARIANT_FALSE);
    return filled;
  });
}

HRESULT COvTable::Close() { return shared::close(*this, core_, close_failed); }

HRESULT COvTable::Create(BSTR bsFilename, IDispatch* tableDefinition) {
  return guard(*this, [&]() -> HRESULT {
    core_.name = view_of(bsFilename);
    const auto definition = ovfile::pointer<IDispatch>(tableDefinition).query<IOvSchema>();
    if (!definition) return report(*this, no_definition);
    return make_from(*definition.get());
  });
}

HRESULT COvTable::make_from(IOvSchema& definition) {
  VARIANT_BOOL is_double = VARIANT_FALSE;
  (void)definition.get_DoublePrecisionFlag(&is_double);
  const HRESULT status = guard(*this, [&] { core_.create(ovfile::pointer<IOvSchema>(&definition)); });
  // In double precision every reason has the same words.
  return FAILED(status) && is_double != VARIANT_FALSE ? report(*this, create_failed) : status;
}

HRESULT COvTable::get_Schema(IOvSchema** pVal) { return shared::get_schema(core_, pVal); }

HRESULT COvTable::put_Schema(IOvSchema* newVal) { return shared::put_schema(core_, newVal); }

HRESULT COvTable::Reserved6(IZuCommonDataSchema** pVal) {
  if (pVal == nullptr) return E_POINTER;
  *pVal = core_.schema.query<IZuCommonDataSchema>().release();
  return S_OK;
}

HRESULT COvTable::get_Name(BSTR* pVal) { return shared::get_name(*this, core_, pVal); }

HRESULT COvTable::put_Name(BSTR newVal) { return shared::put_name(*this, core_, newVal); }

HRESULT COvTable::get_IsLinked(VARIANT_BOOL* pVal) {
  if (pVal == nullptr) return E_POINTER;
  *pVal = core_.is_linked ? VARIANT_TRUE : VARIANT_FALSE;
  return S_OK;
}

HRESULT COvTable::SetProgress(IOvProgress* pProgress) { return shared::set_progress(core_, pProgress); }

HRESULT COvTable::GetFacts(OvTableFacts* pFacts) {
  return guard(*this, [&] { return shared::get_facts(core_, pFacts); });
}

HRESULT COvTable::Rebuild(IOvSchema* pSchema, LONG nColumns, const LONG* pColumnOf, LONG nRows,
                          const LONG* pRowOf) {
  return run_edit(*this, rebuild_words, [&] {
    rebuild(core_, {pSchema, nColumns, pColumnOf, nRows, pRowOf});
  });
}

HRESULT COvTable::Sync() {
  return guard(*this, [&] { core_.opened().sync(); });
}

}  // namespace ovf
