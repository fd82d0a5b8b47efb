#include "unique_names.h"

#include <map>
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
  std::map<std::string, int> next;  // numbers before it are used
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (!made[i].empty()) continue;
    const std::string begin = names[i].empty() ? fmt::format("COL{}", i + 1) : names[i];
    made[i] = begin;
    int& number = next.try_emplace(key_of(begin, letters), 2).first->second;
    if (names[i].empty() && used.insert(key_of(made[i], letters)).second) continue;
    do {
      made[i] = fmt::format("{}_{}", begin, number++);
    } while (!used.insert(key_of(made[i], letters)).second);
  }
  return made;
}

}  // namespace command
