// Runs a compiled expression.
#include "filter/arithmetic.h"
#include "filter/pattern.h"
#include "filter/program.h"
#include "filter/value_text.h"

namespace ovf::filter {

namespace {

bool is_like(const value& text, wide_view pattern, bool wanted) noexcept {
  if (text.is_absent()) return false;
  return matches(value_text(text).view(), pattern) == wanted;
}

}  // namespace

value* apply(const instruction& step, const program& compiled, value* top) noexcept {
  switch (step.code) {
    case opcode::compare:
      --top;
      *top = truth_value(holds(step.asked, step.as, top[0], top[1]));
      break;
    case opcode::like:
      *top = truth_value(is_like(*top, compiled.constants[step.operand].view(), step.wanted));
      break;
    case opcode::is_absent:
      *top = truth_value(top->is_absent() == step.wanted);
      break;
    case opcode::truth:
      *top = truth_value(is_true(*top));
      break;
    case opcode::opposite:
      *top = truth_value(!is_true(*top));
      break;
    case opcode::add:
    case opcode::subtract:
    case opcode::multiply:
    case opcode::divide:
    case opcode::power:
    case opcode::modulo:
    case opcode::minimum:
    case opcode::maximum:
      --top;
      *top = number_value(calculate(step.code, top[0].number, top[1].number));
      break;
    default:
      *top = number_value(calculate(step.code, top->number));
      break;
  }
  return top;
}

bool passes(const program& compiled, const value* variables, value* stack) noexcept {
  if (compiled.never_passes) return false;
  value* top = stack;  // of an empty stack: the first element stays unused
  const std::size_t end = compiled.code.size();
  for (std::size_t at = 0; at < end;) {
    const instruction& step = compiled.code[at++];
    switch (step.code) {
      case opcode::push_constant:
        *++top = compiled.constants[step.operand];
        break;
      case opcode::push_variable:
        *++top = variables[step.operand];
        break;
      case opcode::compare_variable:
        *++top = truth_value(holds(step.asked, variables[step.operand].number, step.number));
        break;
      case opcode::compare_keep:
        --top;
        if (holds(step.asked, step.as, top[0], top[1]) == step.wanted) {
          *top = truth_value(step.outcome);
          at = step.operand;
        }
        break;
      case opcode::jump:
        at = step.operand;
        break;
      case opcode::jump_if:
        if (is_true(*top--) == step.wanted) at = step.operand;
        break;
      case opcode::short_cut:
        if (is_true(*top) == step.wanted) {
          *top = truth_value(step.wanted);
          at = step.operand;
        } else {
          --top;
        }
        break;
      default:
        top = apply(step, compiled, top);
        break;
    }
  }
  return is_true(*top);
}

}  // namespace ovf::filter
