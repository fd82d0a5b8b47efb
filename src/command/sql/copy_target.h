// What a statement in SQL would write over.
#pragma once

#include <string>
#include <string_view>

namespace command {

/// Where a COPY ... TO, be it explained or prepared, writes its rows: an expression in SQL, for a name
/// without quotes too. Empty for any other statement.
std::string copy_target(std::string_view statement);

}  // namespace command
