// Names that all processes of a logon session share: global atoms on Windows, empty files in a folder
// of the user's own on Linux.
#pragma once

#include "base/text.h"

namespace ovf {

bool global_atom_exists(wide_view name) noexcept;
/// Adds the atom, which stays until the session ends. False when it cannot be added.
bool add_global_atom(wide_view name) noexcept;
/// Takes the atom away again; for tests. False when there is none.
bool remove_global_atom(wide_view name) noexcept;

}  // namespace ovf
