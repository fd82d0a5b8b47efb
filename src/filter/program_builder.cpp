#include "filter/program_builder.h"

#include <algorithm>
#include <utility>

#include "filter/expression_error.h"

namespace ovf::filter {

namespace {

operand computed(operand_type type, const operand& first) {
  operand made;
  made.type = type;
  made.start = first.start;
  made.position = first.position;
  return made;
}

void require_number(const operand& of) {
  if (of.type != operand_type::text) return;
  throw expression_error("a text stands where a number is needed", of.position);
}

void require_condition(const operand& of) {
  if (of.type != operand_type::text) return;
  throw expression_error("a text stands where a condition is needed", of.position);
}

/// In which manner two operands are compared.
manner manner_of(relation asked, const operand& left, const operand& right, std::size_t position) {
  const auto either_is = [&](operand_type type) { return left.type == type || right.type == type; };
  if (either_is(operand_type::number) && either_is(operand_type::text)) {
    throw expression_error("a number is compared with a text", position);
  }
  // A blank text is absent, so that the comparison would never hold.
  if (asked == relation::equal && (left.is_empty || right.is_empty)) {
    throw expression_error("nothing equals an empty text, absence is asked for by IS ABSENT", position);
  }
  if (either_is(operand_type::number)) return manner::numbers;
  return either_is(operand_type::text) ? manner::texts : manner::either;
}

}  // namespace

void program_builder::change_depth(int by) noexcept {
  depth_ = by < 0 ? depth_ - static_cast<std::size_t>(-by) : depth_ + static_cast<std::size_t>(by);
  made_.deepest_stack = std::max(made_.deepest_stack, depth_);
}

std::size_t program_builder::emit(const instruction& step) {
  made_.code.push_back(step);
  return made_.code.size() - 1;
}

operand program_builder::push(const value& constant, operand_type type, std::size_t position) {
  made_.constants.push_back(constant);
  instruction step;
  step.code = opcode::push_constant;
  step.argument = static_cast<std::uint32_t>(made_.constants.size() - 1);
  change_depth(+1);
  operand made;
  made.type = type;
  made.is_constant = true;
  made.start = emit(step);
  made.position = position;
  return made;
}

operand program_builder::number(double of, std::size_t position) {
  return push(number_value(of), operand_type::number, position);
}

operand program_builder::text(wide_view of, std::size_t position) {
  const wide& kept = made_.texts.emplace_back(of);
  value constant = text_value(kept, origin::quoted);
  const bool is_empty = constant.is_absent();
  constant.from = origin::quoted;  // also without characters it is a text, which others differ from
  constant.text = kept.data();
  operand made = push(constant, operand_type::text, position);
  made.is_empty = is_empty;
  return made;
}

operand program_builder::variable(wide_view name, std::size_t position) {
  const auto next = static_cast<std::uint32_t>(made_.variables.size());
  const auto [found, is_new] = numbers_of_variables_.try_emplace(wide(name), next);
  if (is_new) made_.variables.emplace_back(name);
  instruction step;
  step.code = opcode::push_variable;
  step.argument = found->second;
  change_depth(+1);
  operand made;
  made.type = operand_type::field;
  made.is_variable = true;
  made.start = emit(step);
  made.position = position;
  return made;
}

/// The operands, all constant, are replaced by what the instruction makes of them.
operand program_builder::fold(const instruction& step, const operand& first) {
  value stack[2];
  const std::size_t count = made_.code.size() - first.start;
  for (std::size_t i = 0; i < count; ++i) {
    stack[i] = made_.constants[made_.code[first.start + i].argument];
  }
  const value result = *apply(step, made_, &stack[count - 1]);
  made_.code.resize(first.start);
  change_depth(-static_cast<int>(count));
  return push(result, operand_type::number, first.position);
}

operand program_builder::apply_to(const instruction& step, const operand& of) {
  if (of.is_constant) return fold(step, of);
  emit(step);
  return computed(operand_type::number, of);
}

operand program_builder::unary(opcode code, const operand& of) {
  require_number(of);
  instruction step;
  step.code = code;
  return apply_to(step, of);
}

operand program_builder::binary(opcode code, const operand& left, const operand& right) {
  require_number(left);
  require_number(right);
  instruction step;
  step.code = code;
  if (left.is_constant && right.is_constant) return fold(step, left);
  emit(step);
  change_depth(-1);
  return computed(operand_type::number, left);
}

operand program_builder::compare(relation asked, const operand& left, const operand& right,
                                 std::size_t position) {
  const manner as = manner_of(asked, left, right, position);
  if (as == manner::numbers && left.is_variable && right.is_constant) {
    return compare_variable(asked, left, constant_of(right).number);
  }
  if (!(left.is_constant && right.is_constant)) return compare_last(asked, left, right, position);
  instruction step;
  step.code = opcode::compare;
  step.asked = asked;
  step.as = as;
  return fold(step, left);
}

/// By far the most frequent condition is one instruction.
operand program_builder::compare_variable(relation asked, const operand& variable, double number) {
  instruction step;
  step.code = opcode::compare_variable;
  step.asked = asked;
  step.argument = made_.code[variable.start].argument;
  step.number = number;
  made_.code.resize(variable.start);
  emit(step);
  change_depth(-1);
  return computed(operand_type::number, variable);
}

operand program_builder::compare_last(relation asked, const operand& left, const operand& right,
                                      std::size_t position) {
  instruction step;
  step.code = opcode::compare;
  step.asked = asked;
  step.as = manner_of(asked, left, right, position);
  emit(step);
  change_depth(-1);
  return computed(operand_type::number, left);
}

operand program_builder::between(const operand& of, const operand& low, const operand& high, bool wanted) {
  instruction step;
  step.code = opcode::between;
  step.as = manner_of(relation::greater_or_equal, of, low, low.position);
  step.as_high = manner_of(relation::less_or_equal, of, high, high.position);
  step.wanted = wanted;
  emit(step);
  change_depth(-2);
  return computed(operand_type::number, of);
}

operand program_builder::like(const operand& of, pattern asked, bool wanted) {
  made_.patterns.push_back(std::move(asked));
  instruction step;
  step.code = opcode::like;
  step.wanted = wanted;
  step.argument = static_cast<std::uint32_t>(made_.patterns.size() - 1);
  return apply_to(step, of);
}

operand program_builder::is_absent(const operand& of, bool wanted) {
  instruction step;
  step.code = opcode::is_absent;
  step.wanted = wanted;
  return apply_to(step, of);
}

operand program_builder::truth(const operand& of) {
  instruction step;
  step.code = opcode::truth;
  return apply_to(step, of);
}

operand program_builder::opposite(const operand& of) {
  require_condition(of);
  instruction step;
  step.code = opcode::opposite;
  return apply_to(step, of);
}

std::size_t program_builder::compare_keep(relation asked, const operand& left, const operand& right,
                                          bool wanted, std::size_t position) {
  instruction step;
  step.code = opcode::compare_keep;
  step.asked = asked;
  step.as = manner_of(asked, left, right, position);
  step.wanted = wanted;
  change_depth(-1);
  return emit(step);
}

std::size_t program_builder::short_cut(const operand& left, bool wanted) {
  require_condition(left);
  instruction step;
  step.code = opcode::short_cut;
  step.wanted = wanted;
  change_depth(-1);
  return emit(step);
}

operand program_builder::joined(const operand& left, const operand& right, std::size_t short_cut) {
  require_condition(right);
  if (!(left.is_constant && right.is_constant)) {
    truth(right);
    land(short_cut);
    return computed(operand_type::number, left);
  }
  const bool is_or = made_.code[short_cut].wanted;
  const bool first = is_true(constant_of(left));
  const bool second = is_true(constant_of(right));
  made_.code.resize(left.start);
  change_depth(-1);
  return push(truth_value(is_or ? first || second : first && second), operand_type::number, left.position);
}

std::size_t program_builder::jump_if(const operand& condition, bool wanted) {
  require_condition(condition);
  instruction step;
  step.code = opcode::jump_if;
  step.wanted = wanted;
  change_depth(-1);
  return emit(step);
}

operand program_builder::either_branch(const operand& condition, const operand& first,
                                       const operand& second) const {
  return computed(first.type == second.type ? first.type : operand_type::field, condition);
}

std::size_t program_builder::jump() {
  instruction step;
  step.code = opcode::jump;
  return emit(step);
}

program program_builder::finish(const operand& result) {
  require_condition(result);
  return std::move(made_);
}

}  // namespace ovf::filter
