// The three classes of this library, by identifier and name. Known without any registration.
#pragma once

#include <array>

#include "base/text.h"
#include "ovfile/ovfile.h"

namespace ovf {

struct own_class {
  CLSID id;
  wide_view name;       ///< version-independent programmatic identifier
  wide_view versioned;  ///< version-dependent programmatic identifier
  wide_view description;
};

inline constexpr std::array<own_class, 3> own_classes{{
    {CLSID_OvTable, OLESTR("OvFile.OvTable"), OLESTR("OvFile.OvTable.1"), OLESTR("OvTable Class")},
    {CLSID_OvSchema, OLESTR("OvFile.OvSchema"), OLESTR("OvFile.OvSchema.1"), OLESTR("OvSchema Class")},
    {CLSID_OvTableADO, OLESTR("OvFile.OvTableADO"), OLESTR("OvFile.OvTableADO.1"),
     OLESTR("OvTableADO Class")},
}};

/// The class of that identifier, or null.
inline const own_class* find_own_class(REFCLSID id) noexcept {
  for (const own_class& candidate : own_classes) {
    if (candidate.id == id) return &candidate;
  }
  return nullptr;
}

}  // namespace ovf
