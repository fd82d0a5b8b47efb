// Descriptions of the interfaces and classes, for hosts that ask an object what it is. On Windows they
// stand in the type library that the module carries as a resource; elsewhere there are none.
#pragma once

#include "ovfile/ovfile.h"

namespace ovf {

bool has_type_library() noexcept;

/// The description of an interface or a class, with a reference for the caller; null after a failure.
/// E_NOTIMPL where there are none.
HRESULT find_type_info(REFGUID id, ITypeInfo** info) noexcept;

/// Enters the type library into the system's registry, and takes it out again. S_OK where there is none
/// to enter, and where it has not been entered.
HRESULT register_type_library() noexcept;
HRESULT unregister_type_library() noexcept;

}  // namespace ovf
