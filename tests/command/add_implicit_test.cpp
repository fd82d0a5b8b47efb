#include <nlohmann/json.hpp>

#include "command/command_test.h"

namespace {

class add_implicit_test : public ovtest::command_test {
 protected:
  void make(std::vector<std::string> options = {}) const {
    EXPECT_EQ(round_trip("A,B\n1,x\n2,y\n", std::move(options)), "A,B\n1,x\n2,y\n");
  }

  /// The field that stands last.
  nlohmann::json last() const {
    return nlohmann::json::parse(run_quietly({"schema", "t.ovt", "--json"}))["fields"].back();
  }

  /// Expects a failure that changes nothing.
  void expect_unchanged(const std::vector<std::string>& options, const std::string& line) const {
    const std::string before = read("t.ovt");
    std::vector<std::string> arguments = {"add-implicit", "t.ovt"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    expect_failure(arguments, line);
    EXPECT_TRUE(read("t.ovt") == before);
  }
};

TEST_F(add_implicit_test, a_number_stands_in_every_row) {
  for (const std::vector<std::string>& options : {std::vector<std::string>{}, {"--single"}}) {
    make(options);
    run_quietly({"add-implicit", "t.ovt", "NX=-5.5"});
    run_quietly({"add-implicit", "t.ovt", "TINY=0.1"});
    EXPECT_EQ(run_quietly({"export", "t.ovt"}), "A,B,NX,TINY\n1,x,-5.5,0.1\n2,y,-5.5,0.1\n");
    EXPECT_EQ(last(), nlohmann::json::parse(
                          R"({"name":"TINY","type":"number","width":4,"implicit":true,"default":0.1})"));
  }
}

TEST_F(add_implicit_test, absent_has_three_spellings) {
  for (const char* value : {"-", "absent", ""}) {
    make();
    run_quietly({"add-implicit", "t.ovt", std::string("GAP=") + value});
    EXPECT_EQ(last(), nlohmann::json::parse(
                          R"({"name":"GAP","type":"number","width":4,"implicit":true,"default":null})"));
    EXPECT_EQ(run_quietly({"export", "t.ovt"}), "A,B,GAP\n1,x,\n2,y,\n");
  }
}

TEST_F(add_implicit_test, anything_else_is_text) {
  for (const std::vector<std::string>& options : {std::vector<std::string>{}, {"--single"}}) {
    make(options);
    run_quietly({"add-implicit", "t.ovt", "ZONE=north end"});
    run_quietly({"add-implicit", "t.ovt", "EQ=a=b"});
    EXPECT_EQ(run_quietly({"export", "t.ovt"}), "A,B,ZONE,EQ\n1,x,north end,a=b\n2,y,north end,a=b\n");
    EXPECT_EQ(last(), nlohmann::json::parse(
                          R"({"name":"EQ","type":"text","width":4,"implicit":true,"default":"a=b"})"));
  }
}

TEST_F(add_implicit_test, text_can_be_asked_for) {
  make();
  run_quietly({"add-implicit", "t.ovt", "CODE=12", "--text", "6"});
  EXPECT_EQ(last(), nlohmann::json::parse(
                        R"({"name":"CODE","type":"text","width":8,"implicit":true,"default":"12"})"));
  run_quietly({"add-implicit", "t.ovt", "DASH=-", "--text", "4"});
  EXPECT_EQ(last()["default"], "-");
  run_quietly({"add-implicit", "t.ovt", "NONE=", "--text", "4"});
  EXPECT_EQ(last()["default"], "");
  EXPECT_EQ(run_quietly({"export", "t.ovt"}), "A,B,CODE,DASH,NONE\n1,x,12,-,\n2,y,12,-,\n");
}

TEST_F(add_implicit_test, a_table_without_rows_takes_one_too) {
  run_quietly({"new", "t.ovt", "--template", "points"});
  run_quietly({"add-implicit", "t.ovt", "COLOUR=3"});
  EXPECT_EQ(run_quietly({"export", "t.ovt"}), "XPT,YPT,ZPT,COLOUR\n");
}

TEST_F(add_implicit_test, rows_move_when_the_header_grows) {
  std::string header = "C1";
  std::string row = "1";
  for (int i = 2; i <= 70; ++i) {
    header += ",C" + std::to_string(i);
    row += "," + std::to_string(i);
  }
  round_trip(header + "\n" + row + "\n" + row + "\n");
  run_quietly({"add-implicit", "t.ovt", "LAST=7"});
  EXPECT_EQ(run_quietly({"export", "t.ovt"}), header + ",LAST\n" + row + ",7\n" + row + ",7\n");
  EXPECT_EQ(files(), (std::vector<std::string>{"in.csv", "t.ovt"}));
}

TEST_F(add_implicit_test, single_precision_warns_of_lost_digits) {
  make({"--single"});
  const ovtest::process_result result = run({"add-implicit", "t.ovt", "N=0.123456789"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.error, "ovfile: warning: single precision loses digits of N\n");
  expect_unchanged({"M=1e39"}, "t.ovt, column M: 1e39 is beyond the range of single precision");
}

TEST_F(add_implicit_test, what_a_table_cannot_have_changes_nothing) {
  make();
  expect_unchanged({"A=1"}, "t.ovt has a column A already");
  expect_unchanged({"ABCDEFGHI=1"}, "t.ovt: ABCDEFGHI: the name is longer than 8 characters");
  expect_unchanged({"N M=1"},
                   "t.ovt: N M: a name may not hold blanks, control characters or any of ,!:*&=()?");
  expect_unchanged({"N=\xCE\xB1"}, "t.ovt, column N: the value has a character that is not in Windows-1252");
  expect_unchanged({"N=abcde", "--text", "4"},
                   "t.ovt, column N: the text has 5 characters, more than the 4 of --text");
  expect_unchanged(
      {"N=x", "--text", "1020"},
      "t.ovt: the table would need 257 words; a double-precision one holds 256 (a number takes one, a "
      "text one for every 4 characters)");
}

TEST_F(add_implicit_test, wrong_usage_is_told) {
  expect_wrong_usage({"add-implicit", "t.ovt", "N"}, "N: expected NAME=VALUE");
  expect_wrong_usage({"add-implicit", "t.ovt", "=1"}, "=1: expected NAME=VALUE");
  for (const char* wrong : {"0", "x", "1025", "1.5"}) {
    expect_wrong_usage({"add-implicit", "t.ovt", "N=1", "--text", wrong},
                       std::string("--text ") + wrong + ": expected a width of 1 to 1024");
  }
  expect_failure({"add-implicit", "none.ovt", "N=1"}, "none.ovt: File does not exist");
}

}  // namespace
