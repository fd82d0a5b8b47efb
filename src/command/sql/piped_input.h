// Statements that read what can be read but once.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace command {

/// Puts what comes through the inherited pipes that the statements name, as /dev/stdin, into temporary files
/// in their place: most statements read twice, once for the columns and once for the rows. A single query
/// that names one reads it as it comes. Throws `failure`.
void hold_piped_input(const std::vector<std::string>& statements);

/// Whether a text in the statement names a pipe.
bool names_a_pipe(std::string_view statement);
/// Throws `failure` for a pipe in the file system that a statement, of which the last one gives the rows,
/// would read twice, and for one that stands twice in them.
void refuse_pipes(const std::vector<std::string>& statements);
/// Whether a statement gives rows, as far as its first word tells.
bool begins_as_query(std::string_view statement);

}  // namespace command
