// Which libraries were found good before: a file in the user's data folder keeps their identities
// (file_identity.h).
#pragma once

#include <string>

namespace command {

/// False as well where the file cannot be read, or is not what was written.
bool is_noted_as_good(const std::string& identity);
/// Where that cannot be noted, it has to be found out again the next time. Throws `interrupted`.
void note_as_good(const std::string& identity);

}  // namespace command
