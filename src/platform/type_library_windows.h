// At the module's end.
#pragma once

namespace ovf {

/// Lets go of the type library, if it was ever asked for.
void release_type_library() noexcept;

}  // namespace ovf
