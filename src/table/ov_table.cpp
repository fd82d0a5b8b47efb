#include "table/ov_table.h"

#include <algorithm>
#include <iterator>

namespace ovf {
namespace {

constexpr wide_view missing_file = OLESTR("File does not exist");
constexpr wide_view not_a_table = OLESTR("Not a valid orvexa table");
constexpr wide_view close_failed = OLESTR("Error in COvTable::Close");
constexpr wide_view no_definition = OLESTR("Empty table definition (schema)");
constexpr wide_view create_failed = OLESTR("Failed to create file");

/// Copies a text into a fixed place with a terminating 0, cut where it does not fit.
template <std::size_t N>
void put_text(OLECHAR (&place)[N], const wide& text) {
  const std::size_t length = std::min(text.size(), N - 1);
  std::copy_n(text.begin(), length, std::begin(place));
  std::fill(std::begin(place) + length, std::end(place), OLECHAR{});
}

OvTableFacts facts_of(table& opened) {
  const table_facts found = opened.facts();
  const auto narrow = [](std::uint64_t count) { return static_cast<LONG>(count); };
  OvTableFacts facts{};
  facts.cbSize = sizeof facts;
  facts.wordBytes = opened.isDouble() ? 8 : 4;
  facts.byteOrder = static_cast<LONG>(found.order);
  facts.atoms = narrow(found.atoms);
  facts.headerPages = narrow(found.header_pages);
  facts.recordWords = narrow(found.record_words);
  facts.recordsPerPage = narrow(found.records_per_page);
  facts.recordsInLastPage = narrow(found.records_in_last_page);
  facts.pages = static_cast<long long>(found.pages);
  facts.rows = static_cast<long long>(opened.getRowCount());
  facts.fileBytes = static_cast<long long>(found.file_bytes);
  put_text(facts.firstName, found.first_name);
  put_text(facts.secondName, found.second_name);
  put_text(facts.description, found.description);
  put_text(facts.owner, found.owner);
  return facts;
}

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

HRESULT COvTable::Close() {
  return guard(*this, [&]() -> HRESULT {
    try {
      core_.close();
      return S_OK;
    } catch (...) {
      return report(*this, close_failed);
    }
  });
}

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

HRESULT COvTable::get_Schema(IOvSchema** pVal) {
  if (pVal == nullptr) return E_POINTER;
  *pVal = ovfile::pointer<IOvSchema>(core_.schema).release();
  return S_OK;
}

HRESULT COvTable::put_Schema(IOvSchema* newVal) {
  *core_.schema.out() = newVal;
  return S_OK;
}

HRESULT COvTable::Reserved6(IZuCommonDataSchema** pVal) {
  if (pVal == nullptr) return E_POINTER;
  *pVal = core_.schema.query<IZuCommonDataSchema>().release();
  return S_OK;
}

HRESULT COvTable::get_Name(BSTR* pVal) {
  if (pVal == nullptr) return E_POINTER;
  *pVal = nullptr;
  return guard(*this, [&] { *pVal = bstr_or_null(core_.name); });
}

HRESULT COvTable::put_Name(BSTR newVal) {
  return guard(*this, [&] { core_.name = view_of(newVal); });
}

HRESULT COvTable::get_IsLinked(VARIANT_BOOL* pVal) {
  if (pVal == nullptr) return E_POINTER;
  *pVal = core_.is_linked ? VARIANT_TRUE : VARIANT_FALSE;
  return S_OK;
}

HRESULT COvTable::GetFacts(OvTableFacts* pFacts) {
  if (pFacts == nullptr) return E_POINTER;
  if (pFacts->cbSize != sizeof(OvTableFacts)) return E_INVALIDARG;
  *pFacts = {};
  pFacts->cbSize = sizeof(OvTableFacts);
  return guard(*this, [&] { *pFacts = facts_of(core_.opened()); });
}

}  // namespace ovf
