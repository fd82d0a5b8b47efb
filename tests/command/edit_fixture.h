// What the tests of commands that change a table share.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "command/command_test.h"

namespace ovtest {

using names = std::vector<std::string>;

class edit_test : public command_test {
 protected:
  std::string exported() const { return run_quietly({"export", "t.ovt"}); }

  /// Runs a command that tells, in this line, what it did.
  void run_telling(std::vector<std::string> arguments, const std::string& line) const {
    const process_result result = run(std::move(arguments));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error, "ovfile: " + line + "\n");
    EXPECT_EQ(result.output, "");
  }

  /// Expects a failure that changes nothing and leaves nothing behind.
  void expect_unchanged(std::vector<std::string> arguments, const std::string& line) const {
    const std::string before = read("t.ovt");
    expect_failure(std::move(arguments), line);
    EXPECT_TRUE(read("t.ovt") == before);
    EXPECT_EQ(files(), (names{"in.csv", "t.ovt"}));
  }

  /// In both precisions.
  template <class Body>
  void in_both(Body body) const {
    for (const names& options : {names{}, names{"--single"}}) {
      SCOPED_TRACE(options.empty() ? "double" : "single");
      body(options);
    }
  }
};

}  // namespace ovtest
