#include "unique_names.h"

#include <set>

#include "words.h"

namespace command {
namespace {

std::string key_of(std::string name, letter_case letters) {
  if (letters == letter_case::counts) return name;
  for (char& c : name) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return name;
}

}  // namespace

std::vector<std::string> unique_names(const std::vector<std::string>& names, letter_case letters) {
  std::vector<std::string> made(names.size());
  std::set<std::string> used;
  // A name that is made must not take the place of one that stands further behind.
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (!names[i].empty() && used.insert(key_of(names[i], letters)).second) made[i] = names[i];
  }
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (!made[i].empty()) continue;
    const std::string begin = names[i].empty() ? fmt::format("COL{}", i + 1) : names[i];
    made[i] = names[i].empty() ? begin : begin + "_2";
    for (int number = names[i].empty() ? 2 : 3; !used.insert(key_of(made[i], letters)).second; ++number) {
      made[i] = fmt::format("{}_{}", begin, number);
    }
  }
  return made;
}

}  // namespace command
