// Runs a compiled expression.
#include "filter/arithmetic.h"
#include "filter/pattern.h"
#include "filter/program.h"
#include "filter/value_text.h"

namespace ovf::filter {

namespace {

bool is_like(const value& text, const pattern& asked, bool wanted) noexcept {
  if (text.is_absent()) return false;
  return matches(value_text(text).view(), asked) == wanted;
}

/// No answer with a bound is no answer at all.
bool is_between(const instruction& step, const value& of, const value& low, const value& high) noexcept {
  const bool from_low = holds(relation::greater_or_equal, step.as, of, low);
  const bool to_high = holds(relation::less_or_equal, step.as_high, of, high);
  if (step.wanted) return from_low && to_high;
  const bool below = holds(relation::less, step.as, of, low);
  const bool above = holds(relation::greater, step.as_high, of, high);
  return (below || above) && (from_low || below) && (to_high || above);
}

}  // namespace

value* apply(const instruction& step, const program& compiled, value* top) noexcept {
  switch (step.code) {
    case opcode::compare:
      --top;
      *top = truth_value(holds(step.asked, step.as, top[0], top[1]));
      break;
    case opcode::between:
      top -= 2;
      *top = truth_value(is_between(step, top[0], top[1], top[2]));
      break;
    case opcode::like:
      *top = truth_value(is_like(*top, compiled.patterns[step.argument], step.wanted));
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
  value* top = stack;  // of an empty stack: the first element stays unused
  const std::size_t end = compiled.code.size();
  for (std::size_t at = 0; at < end;) {
    const instruction& step = compiled.code[at++];
    switch (step.code) {
      case opcode::push_constant:
        *++top = compiled.constants[step.argument];
        break;
      case opcode::push_variable:
        *++top = variables[step.argument];
        break;
      case opcode::compare_variable:
        *++top = truth_value(holds(step.asked, variables[step.argument].number, step.number));
        break;
      case opcode::compare_keep:
        --top;
        if (holds(step.asked, step.as, top[0], top[1]) == step.wanted) {
          *top = truth_value(step.wanted);
          at = step.argument;
        }
        break;
      case opcode::jump:
        at = step.argument;
        break;
      case opcode::jump_if:
        if (is_true(*top--) == step.wanted) at = step.argument;
        break;
      case opcode::short_cut:
        if (is_true(*top) == step.wanted) {
          *top = truth_value(step.wanted);
          at = step.argument;
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
