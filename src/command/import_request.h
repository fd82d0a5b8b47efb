// What the user asked an import to do.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "implicit_field.h"

namespace command {

struct forced_text {
  std::string name;  ///< as in the CSV's header, or as the table will have it
  std::size_t width;
};

struct import_request {
  std::string csv;  ///< or Parquet; `-` is standard input, a CSV
  std::string table;
  bool single = false;
  std::vector<forced_text> texts;
  std::vector<implicit_field> implicits;
  std::optional<std::string> description;
};

}  // namespace command
