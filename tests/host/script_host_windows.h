// Scripts in the system's own interpreters, with the modules registered by the system's own tool.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/process.h"
#include "support/scratch_folder.h"

namespace ovtest {

class script_host : public testing::Test {
 protected:
  static void SetUpTestSuite() { register_modules({}); }
  static void TearDownTestSuite() { register_modules({"/u"}); }

  static void register_modules(const std::vector<std::string>& options) {
    for (const char* module : {OVFILE_LIBRARY_PATH, OVFILTER_PATH}) {
      std::vector<std::string> arguments{"regsvr32.exe", "/s"};
      arguments.insert(arguments.end(), options.begin(), options.end());
      arguments.push_back(std::filesystem::path(module).make_preferred().string());
      EXPECT_EQ(0, run_process(arguments, std::filesystem::temp_directory_path()).status) << module;
    }
  }

  /// What the script writes, lines ended by '\n'. An interpreter is silent about a script that fails: one
  /// that came to its end says so by the status 7.
  std::string run_script(std::filesystem::path script, std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"cscript.exe", "//nologo", script.make_preferred().string()});
    const process_result result = run_process(arguments, folder_.path());
    EXPECT_EQ(7, result.status) << script << " did not come to its end";
    std::string output;
    for (const char each : result.output) {
      if (each != '\r') output += each;
    }
    return output;
  }

  static std::filesystem::path source(const std::filesystem::path& below) {
    return std::filesystem::path(OVFILE_SOURCE_DIR) / below;
  }

  scratch_folder folder_;
};

}  // namespace ovtest
