// The scripts that the documentation shows.
#include "host/script_host_windows.h"
#include "support/file_bytes.h"

namespace ovtest {
namespace {

class documented_scripts : public script_host {
 protected:
  /// With a line added by which the script shows that it came to its end.
  std::string run(const std::string& name, const std::string& last, std::vector<std::string> arguments) {
    bytes script = read_bytes(source("docs/examples") / name);
    script.insert(script.end(), last.begin(), last.end());
    write_bytes(folder_ / name, script);
    return run_script(folder_ / name, std::move(arguments));
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

TEST_F(documented_scripts, fill_a_column_of_a_sheet_without_what_is_absent) {
  const std::string table = source("samples/assays.ovt").make_preferred().string();
  const std::string output = run_basic("excel_macro.vbs", {table, "AU"});
  EXPECT_EQ(output.substr(0, output.find('\n')), "row 1, column 1: 0.004");
  const std::string last = "\nrow 136, column 1: 0.015\n";
  ASSERT_LT(last.size(), output.size());
  EXPECT_EQ(output.substr(output.size() - last.size()), last);
}

}  // namespace
}  // namespace ovtest
