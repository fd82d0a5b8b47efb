// The functions of the language.
#pragma once

#include "filter/program.h"

namespace ovf::filter {

enum class arity : std::uint8_t {
  one,
  two,
  many,      ///< two or more, taken two by two from the left
  condition  ///< a condition and two values, of which one is kept
};

struct function {
  std::string_view name;  ///< in lower case
  arity arguments;
  opcode code;  ///< not for a condition
};

/// By its name in any case; null when there is none.
const function* find_function(wide_view name) noexcept;

}  // namespace ovf::filter
