#include "system_exceptions.h"

namespace ovtest {

// The conversions are our own here, and have no excuse.
bool system_answers_otherwise(std::string_view, std::string_view, std::string_view) { return false; }

}  // namespace ovtest
