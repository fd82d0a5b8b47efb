// Who may do what with a file, for one that takes another's place.
#pragma once

#include <string>

namespace command {

/// Gives the file `to`, which belongs to this process's user, the owner, group, permissions, access list and
/// user's attributes of `from` as far as the system lets us. Where the group stays another one, or the list
/// cannot be given, group and others get no rights: nobody may do what he could not do before. Without a file
/// `from` nothing is done. False with `errno` where `to` cannot be changed.
bool carry_rights(const std::string& from, const std::string& to) noexcept;

}  // namespace command
