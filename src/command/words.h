// Text formatting for messages and output.
#pragma once

#ifndef FMT_HEADER_ONLY
#define FMT_HEADER_ONLY 1
#endif
#include <fmt/compile.h>
#include <fmt/format.h>

#include <string>
#include <string_view>

namespace command {

/// A line on standard error that begins with the program's name, and `lines` below it, which end with LF.
void say(std::string_view words, std::string_view lines = {});

/// "1 row", "2 rows".
std::string counted(long long count, std::string_view thing);

/// A JSON string, quotes included.
std::string json_text(std::string_view utf8);

}  // namespace command
