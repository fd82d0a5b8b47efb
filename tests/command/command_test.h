// What the tests of the command have in common: they run the program itself, in an empty folder.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "support/file_bytes.h"
#include "support/process.h"
#include "support/scratch_folder.h"

namespace ovtest {

class command_test : public testing::Test {
 protected:
  command_test() {
    // The settings of whoever runs the tests shall not matter.
    set_environment("OVFILE_REGISTRY", settings_ / "registry.reg");
    set_environment("OVFILE_ATOMS", settings_ / "atoms");
    // One for all tests: the program notes there what takes it time to find out.
    static const scratch_folder data;
    for (const char* name : {"XDG_DATA_HOME", "LOCALAPPDATA"}) set_environment(name, data.path());
    set_environment("OVFILE", program());
  }

  static std::string program() {
    const char* const set = std::getenv("OVFILE_COMMAND");
    return set != nullptr ? set : OVFILE_COMMAND_PATH;
  }

  /// Runs `ovfile` with these arguments.
  process_result run(std::vector<std::string> arguments, const std::string& input = {}) const {
    arguments.insert(arguments.begin(), program());
    return run_process(arguments, folder_.path(), input);
  }

  /// Runs a shell script of a system that has one; $OVFILE is the program there.
  process_result shell(const std::string& script) const {
    return run_process({"/bin/sh", "-c", script}, folder_.path());
  }

  /// Runs it and expects success without a word on standard error; returns the output.
  std::string run_quietly(std::vector<std::string> arguments, const std::string& input = {}) const {
    const process_result result = run(std::move(arguments), input);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error, "");
    return result.output;
  }

  /// Runs it and expects a failure (status 1) with exactly this line after the program's name.
  void expect_failure(std::vector<std::string> arguments, const std::string& line,
                      const std::string& input = {}) const {
    expect_refusal(1, std::move(arguments), line, input);
  }

  /// The same for wrong usage (status 2).
  void expect_wrong_usage(std::vector<std::string> arguments, const std::string& line) const {
    expect_refusal(2, std::move(arguments), line, {});
  }

  void write(const std::string& name, const std::string& text) const { write_text(folder_ / name, text); }
  std::string read(const std::string& name) const { return read_text(folder_ / name); }

  /// The names in the folder, sorted.
  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  /// What comes back of a CSV that is imported with these options and exported again.
  std::string round_trip(const std::string& csv, std::vector<std::string> options = {}) const {
    write("in.csv", csv);
    options.insert(options.begin(), {"import", "in.csv", "t.ovt"});
    run_quietly(std::move(options));
    return run_quietly({"export", "t.ovt"});
  }

  /// Expects a failure of which the system has something to say, in words of its own, behind these.
  void expect_failure_with_reason(std::vector<std::string> arguments, const std::string& words) const {
    const process_result result = run(std::move(arguments));
    const std::string beginning = "ovfile: " + words + ": ";
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error.substr(0, beginning.size()), beginning);
    EXPECT_GT(result.error.size(), beginning.size() + 1);
    EXPECT_EQ(result.error.find('\n'), result.error.size() - 1);
    EXPECT_EQ(result.output, "");
  }

  const scratch_folder& folder() const { return folder_; }

 private:
  void expect_refusal(int status, std::vector<std::string> arguments, const std::string& line,
                      const std::string& input) const {
    const process_result result = run(std::move(arguments), input);
    EXPECT_EQ(result.status, status);
    EXPECT_EQ(result.error, "ovfile: " + line + "\n");
    EXPECT_EQ(result.output, "");
  }

  scratch_folder folder_;
  scratch_folder settings_;
};

}  // namespace ovtest
