// Runs a program and waits for it.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace ovtest {

struct process_result {
  int status = -1;  ///< what it exited with; 128 + the signal that ended it
  std::string output;
  std::string error;
};

/// Runs `arguments` (UTF-8, the program first) in `folder` with `input` as its standard input, and catches
/// what it writes. Throws std::runtime_error when it cannot be started.
process_result run_process(const std::vector<std::string>& arguments, const std::filesystem::path& folder,
                           const std::string& input = {});

/// For this process and those that it starts from now on.
void set_environment(const std::string& name, const std::filesystem::path& value);

}  // namespace ovtest
