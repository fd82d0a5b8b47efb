// Whether fields of double-precision tables may have names of up to 24 characters instead of 8. The
// user's choice (the master) stands in the registry and counts from the next logon session on: the first
// process of a session that asks for the limit latches the choice and marks the session with a global
// atom, and every later process goes by what is latched.
#pragma once

#include <cstddef>

namespace ovf {

/// Characters (bytes in the ANSI code page) that a new field's name may have in double precision: 24 or 8.
/// The first call of the process decides and marks the session; later calls repeat it whatever has changed
/// since.
std::size_t field_name_limit();

/// The choice of the session, asked anew. As long as nobody has marked the session, this latches the
/// master's value once more.
bool session_uses_long_names();

/// The user's choice for the next session; false when there is none.
bool long_names_master();
/// False when it cannot be written.
bool set_long_names_master(bool use);

}  // namespace ovf
