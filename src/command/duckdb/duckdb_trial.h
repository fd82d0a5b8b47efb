// Whether a file that may be DuckDB's library does what the program needs of it. A damaged one may end the
// process that loads it, so another process tries it.
#pragma once

#include <chrono>
#include <string>

#include "child_process.h"

namespace command {

/// In this process, which may not survive it: loads the library, asks it what touches its main parts, and
/// returns its version. It writes some files in `folder`; where that is empty it does without. Throws
/// `failure`.
std::string try_duckdb_here(const std::string& path, const std::string& folder);

enum class duckdb_verdict {
  good,
  useless,  ///< it cannot be loaded, is too old, or does not work
  damaged,
  unknown  ///< somebody else ended the trial
};

struct duckdb_trial {
  duckdb_verdict verdict = duckdb_verdict::good;
  std::string
      words;  ///< the version of a good one; else the reason, which names the file unless it is damaged
};

/// What becomes of `try_duckdb_here` in another process. Throws `failure` when none can be started,
/// `interrupted`.
duckdb_trial try_duckdb(const std::string& path, const std::string& program = own_program(),
                        std::chrono::milliseconds limit = std::chrono::minutes(1));

}  // namespace command
