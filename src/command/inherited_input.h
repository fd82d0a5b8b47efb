// Input that a program was started with: standard input, or another open file by its number.
#pragma once

#include <optional>
#include <string>

#include "raw_file.h"

namespace command {

/// The number of the open file that a name such as /dev/stdin or /dev/fd/3 stands for: standard input, or
/// another one that can be read and not written.
std::optional<int> inherited_input(const std::string& name);
/// Whoever opens the number's name from now on opens `held` from its beginning.
void put_in_place_of(int number, const raw_file& held);

}  // namespace command
