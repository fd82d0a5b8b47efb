// Statements that read what can be read but once.
#pragma once

#include <string_view>

namespace command {

/// Whether a text in the statement names a pipe, or standard input where that is one.
bool names_a_pipe(std::string_view statement);
/// Whether a statement gives rows, as far as its first word tells.
bool begins_as_query(std::string_view statement);

}  // namespace command
