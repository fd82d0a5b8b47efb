// New tables from templates.
#include <nlohmann/json.hpp>

#include "command/command_test.h"

namespace {

using names = std::vector<std::string>;

class new_template_test : public ovtest::command_test {
 protected:
  nlohmann::json info() const { return nlohmann::json::parse(run_quietly({"info", "t.ovt", "--json"})); }

  /// "name=default", with an `i` behind the name of an implicit field.
  names fields(const std::vector<std::string>& options) const {
    std::vector<std::string> arguments = {"new", "t.ovt"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    run_quietly(arguments);
    names found;
    const nlohmann::json table = info();
    for (const auto& field : table["fields"]) {
      EXPECT_EQ(field["type"], "number");
      found.push_back(field["name"].get<std::string>() + (field["implicit"].get<bool>() ? "i=" : "=") +
                      field["default"].dump());
    }
    EXPECT_EQ(table["rows"], 0);
    return found;
  }

  static names cells(names options) {
    const names all = {"--xinc", "10",  "--yinc", "5",  "--zinc", "2.5",
                       "--nx",   "100", "--ny",   "50", "--nz",   "20"};
    options.insert(options.end(), all.begin(), all.end());
    return options;
  }
};

TEST_F(new_template_test, a_block_model_has_as_many_cells_as_asked_for) {
  EXPECT_EQ(fields(cells({"--template", "model", "--xorig", "-1000", "--zorig", "7.5"})),
            (names{"IJK=0", "XC=0", "YC=0", "ZC=0", "XINC=10", "YINC=5", "ZINC=2.5", "XMORIGi=-1000",
                   "YMORIGi=0", "ZMORIGi=7.5", "NXi=100", "NYi=50", "NZi=20"}));
  EXPECT_EQ(info()["kind"], "block model");
  EXPECT_EQ(info()["type_hint"], 0x40000020);
  EXPECT_EQ(info()["precision"], "double");
}

TEST_F(new_template_test, a_grid_has_as_many_cells_as_asked_for) {
  const names implicit = {"XINCi=10",  "YINCi=5", "ZINCi=2.5", "XMORIGi=0", "YMORIGi=0",
                          "ZMORIGi=0", "NXi=100", "NYi=50",    "NZi=20"};
  EXPECT_EQ(fields(cells({"--template", "grid"})), implicit);
  EXPECT_EQ(info()["kind"], "kind 0x4000");
  names with_cell_numbers = implicit;
  with_cell_numbers.insert(with_cell_numbers.begin(), "IJK=0");
  EXPECT_EQ(fields(cells({"--template", "grid", "--ijk"})), with_cell_numbers);
}

TEST_F(new_template_test, a_single_cell_will_do) {
  const names one = {"--template", "model", "--xinc", "1",    "--yinc", "1",    "--zinc",
                     "1",          "--nx",  "1",      "--ny", "1",      "--nz", "1"};
  const names found = fields(one);
  ASSERT_EQ(found.size(), 13u);
  EXPECT_EQ(names(found.end() - 3, found.end()), (names{"NXi=1", "NYi=1", "NZi=1"}));
}

TEST_F(new_template_test, the_other_templates_have_their_standard_fields) {
  EXPECT_EQ(fields({"--template", "points"}), (names{"XPT=0", "YPT=0", "ZPT=0"}));
  EXPECT_EQ(info()["kind"], "points");
  EXPECT_EQ(fields({"--template", "strings"}), (names{"XP=0", "YP=0", "ZP=0", "PTN=0", "PVALUE=0"}));
  EXPECT_EQ(info()["kind"], "strings");
  EXPECT_EQ(fields({"--template", "triangles"}), (names{"PID1=0", "PID2=0", "PID3=0", "TRIANGLE=0"}));
  EXPECT_EQ(info()["kind"], "wireframe triangles");
  EXPECT_EQ(fields({"--template", "wireframe-points"}), (names{"XP=0", "YP=0", "ZP=0", "PID=0"}));
  EXPECT_EQ(info()["kind"], "wireframe points");
}

TEST_F(new_template_test, precision_and_description_can_be_chosen) {
  fields({"--template", "points", "--single", "--description", "Survey points"});
  EXPECT_EQ(info()["precision"], "single");
  EXPECT_EQ(info()["description"], "Survey points");
}

TEST_F(new_template_test, single_precision_warns_of_lost_digits) {
  const ovtest::process_result result =
      run({"new",    "t.ovt", "--single", "--template", "grid",       "--xinc",  "0.1",
           "--yinc", "5",     "--zinc",   "5",          "--nx",       "1",       "--ny",
           "1",      "--nz",  "1",        "--xorig",    "2296021.09", "--zorig", "0.123456789"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.error, "ovfile: warning: single precision loses digits of --xorig, --zorig\n");
}

TEST_F(new_template_test, numbers_that_single_precision_cannot_hold_are_refused) {
  const auto with = [](const char* size, const char* count) {
    return names{"new",    "t.ovt", "--single", "--template", "grid", "--xinc", size,   "--yinc", "1",
                 "--zinc", "1",     "--nx",     "1",          "--ny", count,    "--nz", "1"};
  };
  expect_failure(with("1e39", "1"), "--xinc 1e39 is beyond the range of single precision");
  expect_failure(with("1", "16777217"), "--ny 16777217: single precision cannot hold this number");
  EXPECT_EQ(files(), names{});
}

TEST_F(new_template_test, cells_are_checked) {
  const auto refused = [&](const names& options, const std::string& line) {
    names arguments = {"new", "t.ovt"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    expect_wrong_usage(arguments, line);
  };
  refused({"--template", "model"}, "--template model needs --xinc");
  refused({"--template", "grid", "--xinc", "1"}, "--template grid needs --nx");
  refused({"--template", "grid", "--xinc", "0", "--nx", "1"}, "--xinc 0: expected a number above 0");
  refused({"--template", "grid", "--xinc", "-2", "--nx", "1"}, "--xinc -2: expected a number above 0");
  refused({"--template", "grid", "--xinc", "nan", "--nx", "1"},
          "--xinc nan: expected a number; it is not a number");
  refused({"--template", "grid", "--xinc", "1", "--xorig", "0x10", "--nx", "1"},
          "--xorig 0x10: expected a number; it is not a number");
  for (const char* wrong : {"0", "-1", "1.5", "2147483648", "many"}) {
    refused({"--template", "grid", "--xinc", "1", "--nx", wrong},
            std::string("--nx ") + wrong + ": expected a whole number from 1 to 2147483647");
  }
  refused({"--template", "points", "--nx", "3"}, "--nx goes with --template model or grid");
  refused({"--template", "model", "--ijk"}, "--ijk goes with --template grid");
  refused({}, "give --template or --xml, one of them");
  refused({"--template", "points", "--xml", "a.xml"}, "give --template or --xml, one of them");
  refused({"--xml", "a.xml", "--single"},
          "--single goes with --template; a schema in XML tells its own precision");
  EXPECT_EQ(run({"new", "t.ovt", "--template", "drillhole"}).status, 2);
  EXPECT_EQ(files(), names{});
}

TEST_F(new_template_test, an_old_table_is_replaced) {
  round_trip("A\n1\n");
  EXPECT_EQ(fields({"--template", "points"}), (names{"XPT=0", "YPT=0", "ZPT=0"}));
  EXPECT_EQ(files(), (names{"in.csv", "t.ovt"}));
}

TEST_F(new_template_test, a_failure_keeps_the_table_that_was_there) {
  round_trip("A\n1\n");
  const std::string before = read("t.ovt");
  expect_failure({"new", "t.ovt", "--template", "points", "--description", "LINKx .", "--single"},
                 "--description: a description that begins with LINK would make the table a link to another "
                 "file");
  EXPECT_TRUE(read("t.ovt") == before);
  EXPECT_EQ(files(), (names{"in.csv", "t.ovt"}));
}

TEST_F(new_template_test, a_folder_that_is_not_there_is_no_place_for_a_table) {
  expect_failure_with_reason({"new", "none/t.ovt", "--template", "points"}, "cannot create none/t.ovt");
}

}  // namespace
