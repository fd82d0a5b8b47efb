// What the functions on variants share.
#pragma once

#include "ovfile/component.h"

namespace ovf {

/// Whether a variant may have this type; arrays and records may not.
bool is_valid_variant_type(VARTYPE type) noexcept;
/// `source` with references followed; what it holds stays `source`'s. E_INVALIDARG, DISP_E_BADVARTYPE.
HRESULT resolve_variant(const VARIANT& source, VARIANT& value) noexcept;
/// Clears `place` and moves `value` in; `value` is let go when the place cannot be cleared.
HRESULT replace_variant(VARIANT& place, const VARIANT& value) noexcept;

}  // namespace ovf
