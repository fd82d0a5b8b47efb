// Conversions that the system under the tests is known to answer otherwise than it should.
#pragma once

#include <string_view>

namespace ovtest {

/// Whether this conversion (types and value as in written_value.h) is to be left out.
bool system_answers_otherwise(std::string_view from, std::string_view value, std::string_view to);

}  // namespace ovtest
