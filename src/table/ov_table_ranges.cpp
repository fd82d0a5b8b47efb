#include "table/ov_table.h"

namespace ovf {
namespace {

constexpr wide_view min_refused = OLESTR("GetColumnMin failed, index is not valid");
constexpr wide_view max_refused = OLESTR("GetColumnMax failed, index is not valid");

}  // namespace

HRESULT COvTable::range_end(wide_view refusal,
                            std::optional<double> (column_ranges::*end)(LONG) const noexcept, LONG index,
                            double* out) {
  if (out == nullptr) return E_POINTER;
  *out = 0;
  return guard(*this, [&]() -> HRESULT {
    ranges_.find(core_);
    const std::optional<double> found = (ranges_.*end)(index);
    if (!found) return report(*this, refusal);
    *out = *found;
    return S_OK;
  });
}

HRESULT COvTable::GetColumnMin(LONG index, double* pVal) {
  return range_end(min_refused, &column_ranges::minimum, index, pVal);
}

HRESULT COvTable::GetColumnMax(LONG index, double* pVal) {
  return range_end(max_refused, &column_ranges::maximum, index, pVal);
}

}  // namespace ovf
