// An implicit field: one value for all rows, which the table keeps in its header.
#pragma once

#include <cstddef>
#include <limits>
#include <optional>
#include <string>

#include "absent.h"

namespace command {

/// A field of a table to make.
struct planned_field {
  std::string name;
  bool is_text = false;
  std::size_t width = 0;                  ///< characters of a text
  double number_default = absent_number;  ///< an implicit field's value
  std::string text_default;               ///< the same of a text, UTF-8
  /// Fields stand in the order of their places; those without one behind the others, stored ones first.
  std::size_t place = std::numeric_limits<std::size_t>::max();
};

/// As the user wrote it.
struct implicit_field {
  std::string name;
  std::string value;
};

/// Takes NAME=VALUE apart. Throws `wrong_usage`, whose words begin with `what` (an option's name and a
/// blank, or nothing) and end with the `form` that was expected.
implicit_field parse_implicit(const std::string& what, const std::string& argument,
                              const char* form = "NAME=VALUE");

/// The field that holds the value: a number where the value is one, absent where it has no characters or
/// is a word for it (cell_value.h), else text as wide as the value. A `text_width` makes it text of that
/// width. Throws `failure`, whose words begin with `what` and the name, for a value that a table of this
/// precision cannot hold.
planned_field plan_implicit(const std::string& what, const implicit_field& wanted, bool single,
                            std::optional<std::size_t> text_width = {});

}  // namespace command
