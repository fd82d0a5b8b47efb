// Another program that works for this one.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "raw_file.h"

namespace command {

struct child_call {
  /// UTF-8. The program first: its path, or the name that it has among the system's programs.
  std::vector<std::string> arguments;
  raw_file* input = nullptr;   ///< what it reads, from where the file stands; else there is nothing to read
  raw_file* output = nullptr;  ///< where its output goes; else that is among its words
};

struct child_end {
  int status = -1;    ///< what it exited with; 128 + the signal that ended it
  std::string words;  ///< what it wrote to standard error (and output)
};

/// Runs it, without a shell, and waits until it ends; `look` is called some times a second meanwhile. What
/// `look` throws, and a stop that was asked for, ends it early. Throws `failure` with the system's reason
/// when it cannot be started.
child_end run_child(
    const child_call& call, const std::function<void()>& look = [] {});

/// This program, for `run_child`.
std::string own_program();

/// The first line of a child's words, without what ends it.
std::string first_line(const std::string& words);

}  // namespace command
