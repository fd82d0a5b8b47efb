// What DuckDB says of a statement that failed, in the command's form.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace command {

class scan_failure;

/// Throws what a failed call says of a statement that has `own_lines` lines before the user's: see
/// sql_database.h. `scans` is why table files could not be read meanwhile.
[[noreturn]] void throw_sql_failure(std::string_view words, std::size_t own_lines, const scan_failure& scans);

/// A message of ours in the form in which it goes through the library: what that puts before it is left out
/// again.
std::string own_sql_words(const std::string& words);

}  // namespace command
