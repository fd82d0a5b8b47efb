// What the tests of `ovfile sql` share: DuckDB's library, without which they are skipped, and a folder for
// temporary files that is empty before and after each call.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "command/command_test.h"
#include "command/duckdb_for_tests.h"
#include "command/kept_variables.h"

namespace ovtest {

using names = std::vector<std::string>;

class sql_test : public command_test {
 protected:
  void SetUp() override {
    const auto library = duckdb_for_tests();
    if (!library) GTEST_SKIP() << "OVFILE_DUCKDB names no library";
    set_environment("OVFILE_DUCKDB", *library);
    put_temporary_files_in(temporary_.path());
  }

  void TearDown() override {
    EXPECT_TRUE(std::filesystem::is_empty(temporary_.path()));
    put_temporary_files_in(usual_);
  }

  /// What the statement gives as CSV.
  std::string csv(const std::string& statement, names options = {}) const {
    options.insert(options.begin(), {"sql", statement, "-o", "csv"});
    return run_quietly(std::move(options));
  }

  /// Makes a table of this CSV.
  void make_table(const std::string& table, const std::string& text, names options = {}) const {
    options.insert(options.begin(), {"import", "-", table});
    EXPECT_EQ(run(std::move(options), text).status, 0);
  }

  /// A table of one column of numbers from 1.
  void make_long_table(const std::string& table, int rows) const {
    run_quietly(
        {"sql", "select i as I from range(1, " + std::to_string(rows + 1) + ") r(i)", "--output", table});
  }

  /// Expects a failure with exactly these lines.
  void expect_lines(names arguments, const std::string& lines) const {
    const process_result result = run(std::move(arguments));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, lines);
    EXPECT_EQ(result.output, "");
  }

  const scratch_folder& temporary() const { return temporary_; }

 private:
  static void put_temporary_files_in(const std::filesystem::path& folder) {
    for (const char* name : {"TMPDIR", "TMP", "TEMP"}) set_environment(name, folder);
  }

  kept_variables kept_{{"OVFILE_DUCKDB"}};
  std::filesystem::path usual_ = std::filesystem::temp_directory_path();
  scratch_folder temporary_;
};

}  // namespace ovtest
