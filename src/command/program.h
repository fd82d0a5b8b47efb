// The program without its system-dependent start.
#pragma once

#include <string>
#include <vector>

namespace command {

/// Runs the command that the arguments (UTF-8, the program's name first) ask for. Returns the exit status:
/// 0 done, 1 failed with a line on standard error (or a difference was found), 2 wrong usage (or nothing
/// could be compared). Throws `interrupted`.
int run_program(const std::vector<std::string>& arguments);

}  // namespace command
