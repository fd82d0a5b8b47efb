// The whole registry as text, to see what a call changed.
#pragma once

#include <map>
#include <string>

namespace ovtest {

/// Keys with a backslash at their end (and an empty text), and values by key and name: a text as it is,
/// everything else as type and bytes. The machine's software and the user's, as 64-bit programs see them.
using registry_snapshot = std::map<std::string, std::string>;

registry_snapshot whole_registry();

/// What `after` has more ("+"), less ("-"), or otherwise ("~") than `before`; a line for each.
std::string difference(const registry_snapshot& before, const registry_snapshot& after);

}  // namespace ovtest
