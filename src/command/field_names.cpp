#include "field_names.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <set>
#include <string_view>

#include "console.h"
#include "decimal.h"
#include "ovfile/smart.h"
#include "words.h"

namespace command {
namespace {

constexpr std::u32string_view never_allowed = U" ,!:*&=()?";
constexpr std::u32string_view never_first = U".@";

std::u32string characters_of(std::string_view utf8) {
  std::u32string characters;
  bool valid = true;
  while (!utf8.empty()) characters.push_back(ovfile::take_utf8(utf8, valid));
  return characters;
}

std::string utf8_of(std::u32string_view characters) {
  ovfile::wide_string wide;
  for (const char32_t c : characters) wide.push_back(static_cast<OLECHAR>(c));
  return ovfile::to_utf8(wide);
}

bool is_allowed(char32_t c) {
  return c >= 0x20 && c != 0x7F && never_allowed.find(c) == never_allowed.npos && has_ansi_place(c);
}

/// The header with an underscore for every character that a name may not have; not yet shortened.
std::u32string made_valid(const std::string& header) {
  std::u32string name = characters_of(without_blanks(header));
  for (char32_t& c : name) {
    if (!is_allowed(c)) c = U'_';
  }
  if (!name.empty() && never_first.find(name[0]) != never_first.npos) name[0] = U'_';
  return name;
}

/// Names that are taken, and makes new ones. Many equal names take no longer than as many different ones.
class name_maker {
 public:
  name_maker(const std::vector<std::string>& taken, std::size_t longest)
      : taken_(taken.begin(), taken.end()), longest_(longest) {}

  bool take(const std::string& name) { return taken_.insert(name).second; }

  /// Takes the name cut to the length, or its beginning with a number behind it that makes it new.
  std::string take_like(const std::u32string& name) {
    std::string made = beginning(name, longest_);
    const std::string_view mark = name.size() < longest_ ? "_" : "";
    for (unsigned number = 2; !take(made);) {
      const std::size_t tail = mark.size() + std::to_string(number).size();
      const std::string begin = beginning(name, longest_ > tail ? longest_ - tail : 0).append(mark);
      unsigned& next = next_[begin];
      if (next > number) {
        number = next;
      } else {
        made = begin + std::to_string(number);
        next = ++number;
      }
    }
    return made;
  }

 private:
  static std::string beginning(const std::u32string& name, std::size_t characters) {
    return utf8_of(std::u32string_view(name).substr(0, characters));
  }

  std::set<std::string> taken_;
  std::size_t longest_;
  std::map<std::string, unsigned> next_;  ///< by what stands in front of a number: smaller ones are taken
};

std::string note_of(std::size_t column, const std::string& header, bool repeated, const std::string& name) {
  if (without_blanks(header).empty())
    return fmt::format("column {} has no name and becomes {}", column, name);
  return fmt::format("column {} \"{}\"{} becomes {}", column, header, repeated ? ", a repeated name," : "",
                     name);
}

std::string folded(std::string_view name) {
  std::string out(name);
  for (char& c : out) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return out;
}

/// How many letters must be put in, taken away or exchanged, or neighbours swapped, to make one of the other.
std::size_t distance(std::string_view left, std::string_view right) {
  std::vector<std::size_t> before_last;
  std::vector<std::size_t> last(right.size() + 1);
  for (std::size_t i = 0; i < last.size(); ++i) last[i] = i;
  for (std::size_t l = 0; l < left.size(); ++l) {
    std::vector<std::size_t> row(last.size());
    row[0] = l + 1;
    for (std::size_t r = 0; r < right.size(); ++r) {
      row[r + 1] = std::min({last[r] + (left[l] == right[r] ? 0 : 1), row[r] + 1, last[r + 1] + 1});
      const bool is_swapped = l > 0 && r > 0 && left[l] == right[r - 1] && left[l - 1] == right[r];
      if (is_swapped) row[r + 1] = std::min(row[r + 1], before_last[r - 1] + 1);
    }
    before_last = std::exchange(last, std::move(row));
  }
  return last.back();
}

}  // namespace

std::string name_problem(const std::string& name, std::size_t longest) {
  const std::u32string characters = characters_of(name);
  if (characters.empty()) return "the name is empty";
  if (characters.size() > longest) return fmt::format("the name is longer than {} characters", longest);
  if (never_first.find(characters[0]) != never_first.npos) return "a name may not begin with . or @";
  for (const char32_t c : characters) {
    if (!has_ansi_place(c)) {
      return fmt::format("the character U+{:04X} is not in Windows-1252", static_cast<std::uint32_t>(c));
    }
    if (!is_allowed(c)) return "a name may not hold blanks, control characters or any of ,!:*&=()?";
  }
  return {};
}

std::vector<std::string> make_field_names(const std::vector<std::string>& headers,
                                          const std::vector<std::string>& taken, std::size_t longest,
                                          std::vector<std::string>& notes) {
  name_maker maker(taken, longest);
  std::vector<std::string> names(headers.size());
  for (std::size_t i = 0; i < headers.size(); ++i) {
    const bool good = name_problem(headers[i], longest).empty();
    if (good && maker.take(headers[i])) names[i] = headers[i];
  }
  for (std::size_t i = 0; i < headers.size(); ++i) {
    if (!names[i].empty()) continue;
    std::u32string wanted = made_valid(headers[i]);
    if (wanted.empty()) wanted = characters_of(fmt::format("COL{}", i + 1));
    names[i] = maker.take_like(wanted);
    const bool repeated = name_problem(headers[i], longest).empty();
    notes.push_back(note_of(i + 1, headers[i], repeated, names[i]));
  }
  return names;
}

std::vector<std::string> names_near(const std::vector<std::string>& names, const std::string& wanted) {
  const std::string sought = folded(wanted);
  // Of two letters every other two are only two letters away.
  std::size_t nearest = sought.size() < 3 ? 0 : sought.size() < 5 ? 1 : 2;
  std::vector<std::string> found;
  for (const std::string& name : names) {
    const std::size_t away = distance(folded(name), sought);
    if (away > nearest) continue;
    if (away < nearest) found.clear();
    nearest = away;
    found.push_back(name);
  }
  return found;
}

}  // namespace command
