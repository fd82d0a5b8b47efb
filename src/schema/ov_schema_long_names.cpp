#include "engine/long_field_names.h"
#include "schema/ov_schema.h"
#include "storage/format.h"

namespace ovf {

namespace {

constexpr VARIANT_BOOL truth(bool value) noexcept { return value ? VARIANT_TRUE : VARIANT_FALSE; }

}  // namespace

HRESULT COvSchema::get_FieldNameMaxLength(LONG* pVal) {
  if (pVal == nullptr) return E_POINTER;
  *pVal = 0;
  return guard(
      *this, [&] { *pVal = static_cast<LONG>(is_double() ? field_name_limit() : format::short_name_chars); });
}

HRESULT COvSchema::get_UseLongFieldNames(VARIANT_BOOL* pVal) {
  if (pVal == nullptr) return E_POINTER;
  *pVal = VARIANT_FALSE;
  return guard(*this, [&] { *pVal = truth(session_uses_long_names()); });
}

HRESULT COvSchema::get_UseLongFieldNamesMaster(VARIANT_BOOL* pVal) {
  if (pVal == nullptr) return E_POINTER;
  *pVal = VARIANT_FALSE;
  return guard(*this, [&] { *pVal = truth(long_names_master()); });
}

HRESULT COvSchema::put_UseLongFieldNamesMaster(VARIANT_BOOL newVal) {
  // VARIANT_TRUE alone is true here; 1 writes what 0 writes.
  return guard(*this, [&] { return set_long_names_master(newVal == VARIANT_TRUE) ? S_OK : E_FAIL; });
}

}  // namespace ovf
