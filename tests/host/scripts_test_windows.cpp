// Hosts that nobody here wrote: the system's own script interpreters, after the modules were registered
// by the system's own tool. A script tells by its status that it came to its end, and by its last line
// how much it has checked.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/file_bytes.h"
#include "support/process.h"
#include "support/scratch_folder.h"

namespace ovtest {
namespace {

class scripts : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    register_server(OVFILE_LIBRARY_PATH, {});
    register_server(OVFILTER_PATH, {});
  }
  static void TearDownTestSuite() {
    register_server(OVFILTER_PATH, {"/u"});
    register_server(OVFILE_LIBRARY_PATH, {"/u"});
  }

  static void register_server(const std::string& module, const std::vector<std::string>& options) {
    std::vector<std::string> arguments{"regsvr32.exe", "/s"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.push_back(std::filesystem::path(module).make_preferred().string());
    EXPECT_EQ(0, run_process(arguments, std::filesystem::temp_directory_path()).status) << module;
  }

  /// What the script writes, without line ends at its end.
  std::string run(const std::string& script) {
    const auto path =
        (std::filesystem::path(OVFILE_SOURCE_DIR) / "tests" / "scripts" / script).make_preferred();
    const process_result result =
        run_process({"cscript.exe", "//nologo", path.string(), folder_.path().string()}, folder_.path());
    EXPECT_EQ(7, result.status) << script << " did not come to its end";
    std::string output = result.output;
    while (!output.empty() && (output.back() == '\n' || output.back() == '\r')) output.pop_back();
    return output;
  }

  scratch_folder folder_;
};

TEST_F(scripts, in_basic_import_a_csv) {
  const std::string csv = "BHID,FROM,TO,AU\r\nDH001,0,1.5,0.25\r\nDH001,1.5,3,-\r\nDH002,0,2,12.125\r\n";
  write_bytes(folder_ / "assays.csv", bytes(csv.begin(), csv.end()));
  EXPECT_EQ("done 13", run("import_csv.vbs"));
}

TEST_F(scripts, in_javascript_walk_both_ways) { EXPECT_EQ("done 9", run("walk.js")); }

TEST_F(scripts, in_basic_create_from_templates) { EXPECT_EQ("done 16", run("templates.vbs")); }

TEST_F(scripts, in_basic_sort_repair_and_delete) { EXPECT_EQ("done 19", run("edits.vbs")); }

TEST_F(scripts, in_basic_filter_rows) { EXPECT_EQ("done 9", run("filters.vbs")); }

TEST_F(scripts, in_javascript_sign_tables_and_read_schemas) {
  EXPECT_EQ("done 12", run("signatures_and_xml.js"));
}

TEST_F(scripts, in_basic_handle_errors) { EXPECT_EQ("done 36", run("errors.vbs")); }

TEST_F(scripts, in_javascript_handle_errors) { EXPECT_EQ("done 21", run("errors.js")); }

TEST_F(scripts, in_basic_make_a_hundred_thousand_objects) {
  EXPECT_EQ("done 100000", run("many_objects.vbs"));
}

}  // namespace
}  // namespace ovtest
