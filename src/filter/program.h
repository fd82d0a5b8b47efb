// A compiled expression: instructions for a machine with a stack, constants, and the variables' names.
#pragma once

#include <deque>
#include <vector>

#include "filter/pattern.h"
#include "filter/value.h"

namespace ovf::filter {

enum class opcode : std::uint8_t {
  push_constant,     ///< the one of number `argument`
  push_variable,     ///< the one of number `argument`
  compare_variable,  ///< variable `argument` with `number`; pushes 1 or 0
  compare,           ///< takes two, pushes 1 or 0
  compare_keep,      ///< takes the right one; when the answer is `wanted`, the left one becomes it and
                     ///< `argument` is where to go on
  between,           ///< takes a value and two bounds; the answer is 1 when it lies as `wanted`
  like,              ///< pattern `argument`; the answer is 1 when the match is as `wanted`
  is_absent,         ///< the answer is 1 when that is as `wanted`
  same,              ///< the number of a value
  negate,
  absolute,
  square_root,
  logarithm,
  exponential,
  whole,
  add,
  subtract,
  multiply,
  divide,
  power,
  modulo,
  minimum,
  maximum,
  truth,      ///< 1 for a true value, 0 for every other
  opposite,   ///< 0 for a true value, 1 for every other
  jump,       ///< to `argument`
  jump_if,    ///< takes one; to `argument` when its truth is as `wanted`
  short_cut,  ///< when its truth is as `wanted`: it becomes that and on to `argument`; else takes it
};

struct instruction {
  opcode code = opcode::truth;
  relation asked = relation::equal;
  manner as = manner::either;
  manner as_high = manner::either;  ///< the same with the upper of two bounds
  bool wanted = false;
  std::uint32_t argument = 0;
  double number = 0;
};

struct program {
  std::vector<instruction> code;
  std::vector<value> constants;
  std::deque<wide> texts;  ///< what the constants look into; never moved
  std::vector<pattern> patterns;
  std::vector<wide> variables;
  std::size_t deepest_stack = 0;

  /// A new one would need memory.
  void clear() noexcept {
    code.clear();
    constants.clear();
    texts.clear();
    patterns.clear();
    variables.clear();
    deepest_stack = 0;
  }
};

/// Whether the values pass. `variables` has one for each of the program's, `stack` room for one more than
/// its deepest. Allocates nothing. Not for a program without instructions.
bool passes(const program& compiled, const value* variables, value* stack) noexcept;

/// One operation on the top of a stack, whose last element `top` points to; it answers the new top.
/// Instructions that go elsewhere or look at variables are not for it.
value* apply(const instruction& step, const program& compiled, value* top) noexcept;

}  // namespace ovf::filter
