#include "child_process.h"

namespace command {

std::string first_line(const std::string& words) {
  const std::size_t begin = words.find_first_not_of("\r\n");
  if (begin == std::string::npos) return {};
  return words.substr(begin, words.find_first_of("\r\n", begin) - begin);
}

}  // namespace command
