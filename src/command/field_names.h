// Names for a table's fields, made from what a CSV's header says. A table refuses some characters, long
// names and repeated ones.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace command {

/// Why the table would refuse the name (UTF-8, at most `longest` characters), in words; empty: it would
/// not.
std::string name_problem(const std::string& name, std::size_t longest);

/// One name per header, all different from each other and from `taken`. A header that is a good name
/// stays as it is, the others are changed as little as possible. `notes` receives a sentence for every
/// change. Names are UTF-8.
std::vector<std::string> make_field_names(const std::vector<std::string>& headers,
                                          const std::vector<std::string>& taken, std::size_t longest,
                                          std::vector<std::string>& notes);

/// Those of `names` that the user may have meant: equal but for case, or as few letters away as any, and at
/// most two.
std::vector<std::string> names_near(const std::vector<std::string>& names, const std::string& wanted);

}  // namespace command
