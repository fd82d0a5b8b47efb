// What the tests of Parquet have in common; without DuckDB's library they are skipped.
#pragma once

#include <gmock/gmock.h>

#include "command/command_test.h"
#include "command/duckdb_for_tests.h"
#include "command/kept_variables.h"

namespace ovtest {

class parquet_test : public command_test {
 protected:
  void SetUp() override {
    const auto library = duckdb_for_tests();
    if (!library) GTEST_SKIP() << "OVFILE_DUCKDB names no library";
    set_environment("OVFILE_DUCKDB", *library);
  }

  /// t.ovt of a CSV.
  void make_table(const std::string& csv, std::vector<std::string> options = {}) const {
    write("in.csv", csv);
    options.insert(options.begin(), {"import", "in.csv", "t.ovt"});
    run_quietly(std::move(options));
  }

  /// A Parquet file as another program writes it.
  void make_parquet(const std::string& name, const std::string& query) const {
    EXPECT_EQ(run({"sql", "copy (" + query + ") to '" + name + "' (format parquet)"}).error, "");
  }

  /// The CSV of the table that is made of what such a query gives.
  std::string imported(const std::string& query, std::vector<std::string> options = {}) const {
    make_parquet("in.parquet", query);
    options.insert(options.begin(), {"import", "in.parquet", "t.ovt"});
    run_quietly(std::move(options));
    return run_quietly({"export", "t.ovt"});
  }

  /// What `info --json` says, without the lines that begin with these words.
  std::string info(const std::string& table, const std::vector<std::string>& without) const {
    const std::string json = run_quietly({"info", table, "--json"});
    std::string kept;
    for (std::size_t at = 0; at < json.size();) {
      const std::size_t end = std::min(json.find('\n', at), json.size() - 1) + 1;
      const std::string line = json.substr(at, end - at);
      at = end;
      const bool left_out = std::any_of(without.begin(), without.end(), [&](const std::string& word) {
        return line.find('"' + word + "\":") != line.npos;
      });
      if (!left_out) kept += line;
    }
    return kept;
  }

  static std::string sorted_lines(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t end = std::min(text.find('\n', at), text.size() - 1) + 1;
      lines.push_back(text.substr(at, end - at));
      at = end;
    }
    if (!lines.empty()) std::sort(lines.begin() + 1, lines.end());
    std::string out;
    for (const std::string& line : lines) out += line;
    return out;
  }

  /// The names of the folders in a folder, sorted.
  std::vector<std::string> names_in(const std::string& name) const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder() / path_of(name))) {
      const std::u8string leaf = entry.path().filename().u8string();
      names.emplace_back(leaf.begin(), leaf.end());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  static std::filesystem::path path_of(const std::string& utf8) {
    return {std::u8string(utf8.begin(), utf8.end())};
  }

 private:
  kept_variables kept_{{"OVFILE_DUCKDB"}};
};

}  // namespace ovtest
