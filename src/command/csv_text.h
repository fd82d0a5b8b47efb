// Cells on their way into a CSV (RFC 4180).
#pragma once

#include <string>
#include <string_view>

namespace command {

/// Appends one cell, in quotes where it needs them.
inline void append_csv_cell(std::string& out, std::string_view cell) {
  if (cell.find_first_of(",\"\r\n") == cell.npos) {
    out += cell;
    return;
  }
  out += '"';
  for (const char c : cell) {
    if (c == '"') out += '"';
    out += c;
  }
  out += '"';
}

}  // namespace command
