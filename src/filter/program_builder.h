// Writes the instructions of a program, operation by operation, and calculates constant ones at once.
#pragma once

#include <unordered_map>

#include "filter/program.h"

namespace ovf::filter {

/// What is known of a value before the program runs. A field may hold a number or a text.
enum class operand_type : std::uint8_t { number, text, field };

/// A value that the instructions from `start` on leave on the stack.
struct operand {
  operand_type type = operand_type::number;
  bool is_constant = false;  ///< its only instruction pushes a constant
  bool is_variable = false;  ///< its only instruction pushes a variable
  bool is_empty = false;     ///< a constant text without characters other than blanks
  std::size_t start = 0;
  std::size_t position = 0;  ///< in the expression
};

/// Each operation takes the operands that were made last. Where an operand may not be a text, one throws
/// expression_error.
class program_builder {
 public:
  operand number(double of, std::size_t position);
  operand text(wide_view of, std::size_t position);
  operand variable(wide_view name, std::size_t position);

  operand unary(opcode code, const operand& of);
  operand binary(opcode code, const operand& left, const operand& right);

  operand compare(relation asked, const operand& left, const operand& right, std::size_t position);
  /// The same, never calculated beforehand: for the last of several, to whose result others jump.
  operand compare_last(relation asked, const operand& left, const operand& right, std::size_t position);
  operand between(const operand& of, const operand& low, const operand& high, bool wanted);
  operand like(const operand& of, pattern asked, bool wanted);
  operand is_absent(const operand& of, bool wanted);
  operand opposite(const operand& of);

  /// An instruction that may go elsewhere; where to is told to `land` later. The first one keeps the left
  /// operand when it does not.
  std::size_t compare_keep(relation asked, const operand& left, const operand& right, bool wanted,
                           std::size_t position);
  /// The left side of OR (`wanted`) or AND (not), then, with the right side made, the whole.
  std::size_t short_cut(const operand& left, bool wanted);
  operand joined(const operand& left, const operand& right, std::size_t short_cut);
  std::size_t jump_if(const operand& condition, bool wanted);
  std::size_t jump();
  /// The jump lands on the next instruction to come.
  void land(std::size_t jump) { made_.code[jump].argument = static_cast<std::uint32_t>(made_.code.size()); }

  /// The second of two branches comes next. One of them runs, so it begins with the stack that the first
  /// one began with.
  void begin_other_branch() noexcept { --depth_; }
  operand either_branch(const operand& condition, const operand& first, const operand& second) const;

  program finish(const operand& result);

 private:
  std::size_t emit(const instruction& step);
  operand push(const value& constant, operand_type type, std::size_t position);
  operand fold(const instruction& step, const operand& first);
  operand apply_to(const instruction& step, const operand& of);
  operand truth(const operand& of);
  operand compare_variable(relation asked, const operand& variable, double number);
  void change_depth(int by) noexcept;
  value constant_of(const operand& of) const { return made_.constants[made_.code[of.start].argument]; }

  program made_;
  std::unordered_map<wide, std::uint32_t> numbers_of_variables_;
  std::size_t depth_ = 0;
};

}  // namespace ovf::filter
