#include "table/ov_table.h"

namespace ovf {
namespace {

constexpr wide_view min_refused = OLESTR("GetColumnMin failed, index is not valid");
constexpr wide_view max_refused = OLESTR("GetColumnMax failed, index is not valid");

}  // namespace

HRESULT COvTable::GetColumnMin(LONG index, double* pVal) {
  if (pVal == nullptr) return E_POINTER;
  *pVal = 0;
  return guard(*this, [&]() -> HRESULT {
    ranges_.find(core_);
    const std::optional<double> found = ranges_.minimum(index);
    if (!found) return report(*this, min_refused);
    *pVal = *found;
    return S_OK;
  });
}

HRESULT COvTable::GetColumnMax(LONG index, double* pVal) {
  if (pVal == nullptr) return E_POINTER;
  *pVal = 0;
  return guard(*this, [&]() -> HRESULT {
    ranges_.find(core_);
    const std::optional<double> found = ranges_.maximum(index);
    if (!found) return report(*this, max_refused);
    *pVal = *found;
    return S_OK;
  });
}

}  // namespace ovf
