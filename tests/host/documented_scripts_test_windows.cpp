// The scripts that the documentation shows, run by the system's own interpreters.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/file_bytes.h"
#include "support/process.h"
#include "support/scratch_folder.h"

namespace ovtest {
namespace {

class documented_scripts : public testing::Test {
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

  static std::filesystem::path source(const char* folder) {
    return std::filesystem::path(OVFILE_SOURCE_DIR) / folder;
  }

  /// What a script writes. An interpreter is silent about a script that fails, so one line is added by
  /// which it shows that it came to its end.
  std::string run(const std::string& name, const std::string& last, std::vector<std::string> arguments) {
    bytes script = read_bytes(source("docs") / "examples" / name);
    script.insert(script.end(), last.begin(), last.end());
    const auto path = folder_ / name;
    write_bytes(path, script);
    arguments.insert(arguments.begin(), {"cscript.exe", "//nologo", path.string()});
    const process_result result = run_process(arguments, folder_.path());
    EXPECT_EQ(7, result.status) << name << " did not come to its end";
    std::string output;
    for (const char each : result.output) {
      if (each != '\r') output += each;
    }
    return output;
  }
  std::string run_basic(const std::string& name, std::vector<std::string> arguments) {
    return run(name, "\r\nWScript.Quit 7\r\n", std::move(arguments));
  }
  std::string run_javascript(const std::string& name, std::vector<std::string> arguments) {
    return run(name, "\r\nWScript.Quit(7);\r\n", std::move(arguments));
  }
  std::string collars() {
    const auto path = (folder_ / "collars.ovt").make_preferred().string();
    EXPECT_EQ(run_basic("make_table.vbs", {path}), "OvFile.OvTable.1: Error: Invalid number\nmade\n");
    return path;
  }

  scratch_folder folder_;
};

TEST_F(documented_scripts, make_and_print_a_table) {
  const std::string path = collars();
  EXPECT_EQ(run_basic("print_column.vbs", {path, "XCOLLAR"}), "1250.5\n1275.25\n");
  EXPECT_EQ(run_basic("print_column.vbs", {path, "ZONE"}), "7\n7\n");
}

TEST_F(documented_scripts, filter_rows) {
  EXPECT_EQ(run_javascript("passing_rows.js", {collars(), "XCOLLAR > 1260"}), "2\n");
}

TEST_F(documented_scripts, delete_rows) {
  EXPECT_EQ(run_javascript("delete_rows.js", {collars(), "BHID", "LK001"}), "1 rows left\n");
}

}  // namespace
}  // namespace ovtest
