#include "absent.h"

#include "number_text.h"

namespace command {

std::string written_absent(const std::string& word) {
  if (word == "null") return {};
  return word == "keep" ? number_text(absent_number) : word;
}

}  // namespace command
