#include "filter/arithmetic.h"

#include <algorithm>

namespace ovf::filter {

namespace {

double finite(double number) noexcept { return std::isfinite(number) ? number : not_a_number; }

/// With the sign of the divisor, so that the classes of a negative number follow on those of a positive.
double remainder_of(double left, double right) noexcept {
  const double rest = std::fmod(left, right);
  return rest != 0 && (rest < 0) != (right < 0) ? rest + right : rest;
}

double unary(opcode of, double operand) noexcept {
  switch (of) {
    case opcode::same:
      return operand;
    case opcode::negate:
      return -operand;
    case opcode::absolute:
      return std::abs(operand);
    case opcode::square_root:
      return std::sqrt(operand);
    case opcode::logarithm:
      return std::log(operand);
    case opcode::exponential:
      return std::exp(operand);
    case opcode::whole:
      return std::floor(operand);
    default:
      return not_a_number;
  }
}

double binary(opcode of, double left, double right) noexcept {
  switch (of) {
    case opcode::add:
      return left + right;
    case opcode::subtract:
      return left - right;
    case opcode::multiply:
      return left * right;
    case opcode::divide:
      return left / right;
    case opcode::power:
      return std::pow(left, right);
    case opcode::modulo:
      return remainder_of(left, right);
    case opcode::minimum:
      return std::min(left, right);
    case opcode::maximum:
      return std::max(left, right);
    default:
      return not_a_number;
  }
}

}  // namespace

double calculate(opcode of, double operand) noexcept { return finite(unary(of, operand)); }

double calculate(opcode of, double left, double right) noexcept {
  // Some functions have an answer for one NaN.
  if (std::isnan(left) || std::isnan(right)) return not_a_number;
  return finite(binary(of, left, right));
}

}  // namespace ovf::filter
