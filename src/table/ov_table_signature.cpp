#include "table/ov_table.h"
#include "table/signature.h"
#include "table/work_progress.h"

namespace ovf {
namespace {

constexpr wide_view no_provider = OLESTR("CryptAcquireContext failed");
constexpr wide_view no_hash = OLESTR("No hash generated");
constexpr wide_view general_failure = OLESTR("General exception thrown");
constexpr wide_view stopped = OLESTR("GetSignature failed, it was stopped");

}  // namespace

HRESULT COvTable::GetSignature(VARIANT_BOOL ignoreDescription, VARIANT_BOOL ignoreFieldOrder,
                               VARIANT_BOOL ignorePrecision, LONG nPtsAfterDecimal, BSTR* pVal) {
  if (pVal == nullptr) return E_POINTER;
  *pVal = nullptr;
  if (!core_.is_open() || !core_.schema) return E_FAIL;
  const signature_choice choice{ignoreDescription != VARIANT_FALSE, ignoreFieldOrder != VARIANT_FALSE,
                                ignorePrecision != VARIANT_FALSE, nPtsAfterDecimal};
  try {
    *pVal = bstr_or_null(hexadecimal(signature_of(core_, choice)));
    return S_OK;
  } catch (const sha1_unavailable&) {
    return report(*this, no_provider);
  } catch (const sha1_failed&) {
    return report(*this, no_hash);
  } catch (const work_stopped&) {
    return ReportError(class_id, stopped, 0, nullptr, interface_id, E_ABORT);
  } catch (...) {
    return report(*this, general_failure);
  }
}

HRESULT COvTable::GetLooseSignature(BSTR* pVal) {
  return GetSignature(VARIANT_TRUE, VARIANT_TRUE, VARIANT_TRUE, -1, pVal);
}

HRESULT COvTable::GetTightSignature(BSTR* pVal) {
  return GetSignature(VARIANT_FALSE, VARIANT_FALSE, VARIANT_FALSE, -1, pVal);
}

}  // namespace ovf
