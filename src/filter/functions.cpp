#include "filter/functions.h"

#include <algorithm>

namespace ovf::filter {

namespace {

constexpr function functions[] = {
    {"abs", arity::one, opcode::absolute},     {"min", arity::many, opcode::minimum},
    {"max", arity::many, opcode::maximum},     {"sqrt", arity::one, opcode::square_root},
    {"log", arity::one, opcode::logarithm},    {"exp", arity::one, opcode::exponential},
    {"int", arity::one, opcode::whole},        {"mod", arity::two, opcode::modulo},
    {"if", arity::condition, opcode::jump_if},
};

}  // namespace

const function* find_function(wide_view name) noexcept {
  const auto* const found = std::find_if(std::begin(functions), std::end(functions), [&](const function& of) {
    return equal_without_case(name, of.name);
  });
  return found == std::end(functions) ? nullptr : found;
}

}  // namespace ovf::filter
