// Where classes are looked up that neither this process nor this library has: the registry, then the
// file `ovfile-components.reg` beside the library.
#pragma once

#include <optional>

#include "base/text.h"

namespace ovf {

/// The module that holds a class, ready to be loaded (UTF-8).
std::optional<std::string> registered_module(REFCLSID id);
std::optional<CLSID> registered_class(wide_view programmatic_id);
std::optional<wide> registered_name(REFCLSID id);

/// The class object of a class in a module. CO_E_DLLNOTFOUND with the loader's text on the debug
/// channel, CO_E_ERRORINDLL for a module without the entry point, else what the module says.
HRESULT class_object_of_module(const std::string& path, REFCLSID id, REFIID iid, void** out);

}  // namespace ovf
