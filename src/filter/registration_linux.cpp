#include "filter/registration.h"

namespace ovf::filter {

// Nothing to write: `ovfile-components.reg`, which lies beside the library, names this module.
HRESULT register_class() noexcept { return S_OK; }

HRESULT unregister_class() noexcept { return S_OK; }

}  // namespace ovf::filter
