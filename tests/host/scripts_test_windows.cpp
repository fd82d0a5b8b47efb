// Hosts that nobody here wrote: a script tells by its status that it came to its end, and by its last line
// how much it has checked.
#include "host/script_host_windows.h"
#include "support/file_bytes.h"

namespace ovtest {
namespace {

class scripts : public script_host {
 protected:
  std::string run(const char* script) const {
    std::string output = run_script(source("tests/scripts") / script, {folder_.path().string()});
    while (!output.empty() && output.back() == '\n') output.pop_back();
    return output;
  }
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
