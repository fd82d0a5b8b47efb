// Arithmetic on numbers. NaN stands for absent; what has no finite result is absent too.
#pragma once

#include "filter/program.h"

namespace ovf::filter {

double calculate(opcode of, double operand) noexcept;
double calculate(opcode of, double left, double right) noexcept;

}  // namespace ovf::filter
