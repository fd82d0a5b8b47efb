// Why the system refused a table's file: the library's messages do not always tell.
#pragma once

#include <string>

namespace command {

/// For a table that could not be opened (to be changed, if so). Throws `failure` with the reason where one
/// can be found out.
void refuse_unopenable_file(const std::string& name, bool to_change);

/// For a table, not open any more, in whose place no copy could be put. Throws `failure` with the reason
/// where one can be found out.
void refuse_unreplaceable_file(const std::string& name);

/// For a new table that could not be written and is not open any more; messages name `shown`. What stands in
/// its file is lost. Throws `failure` with the reason where one can be found out.
void refuse_unwritable_file(const std::string& name, const std::string& shown);

}  // namespace command
