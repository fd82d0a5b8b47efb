// How a command ends early. Messages are UTF-8, name the file (and row and column where there are such)
// and are one line; main prints them.
#pragma once

#include <exception>
#include <stdexcept>
#include <string>
#include <utility>

namespace command {

/// The work failed: exit status 1.
struct failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The same for a part of what the user wrote: lines that show it follow the message.
struct marked_failure : failure {
  marked_failure(const std::string& words, std::string shown) : failure(words), lines(std::move(shown)) {}
  std::string lines;  ///< each ends with LF
};

/// The arguments make no sense together: exit status 2.
struct wrong_usage : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// What was compared differs: exit status 1, and nothing is left to say.
struct difference {};

/// A comparison that came to no result: exit status 2, since 1 is a difference.
struct no_comparison : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Whoever reads our output has gone: nothing is left to do or to say.
struct broken_pipe {};

/// A signal (or its like) asked the program to stop; what it made so far is to be removed.
struct interrupted {};

/// What went wrong, whoever threw it.
std::string words_of(const std::exception& error);

}  // namespace command
