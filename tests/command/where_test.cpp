#include "command/command_test.h"

namespace {

class where_test : public ovtest::command_test {
 protected:
  static constexpr const char* csv =
      "BHID,FROM,AU,ROCK\n"
      "H1,0,1.5,ORE\n"
      "H1,5,0.4,WASTE\n"
      "H2,0,,ORE\n"
      "H2,5,2.5,\n"
      "H3,0,0.1,ORE\n";

  where_test() { round_trip(csv); }

  std::string export_where(const std::string& condition) const {
    return run_quietly({"export", "t.ovt", "--columns", "FROM,AU", "--where", condition});
  }

  /// Expects a failure with these lines behind the program's name.
  void expect_lines(const std::string& condition, const std::string& lines) const {
    for (const char* name : {"export", "head"}) {
      const ovtest::process_result result = run({name, "t.ovt", "--where", condition});
      EXPECT_EQ(result.status, 1);
      EXPECT_EQ(result.error, "ovfile: " + lines);
      EXPECT_EQ(result.output, "");
    }
  }
};

TEST_F(where_test, rows_that_meet_the_condition_are_exported) {
  EXPECT_EQ(export_where("AU > 0.3"), "FROM,AU\n0,1.5\n5,0.4\n5,2.5\n");
  EXPECT_EQ(export_where("AU > 0.3 AND ROCK = 'ORE'"), "FROM,AU\n0,1.5\n");
  EXPECT_EQ(export_where("BHID LIKE 'H%' AND FROM = 5"), "FROM,AU\n5,0.4\n5,2.5\n");
  EXPECT_EQ(export_where("AU > 100"), "FROM,AU\n");
}

TEST_F(where_test, single_precision_numbers_are_what_they_read_as) {
  round_trip(csv, {"--single"});
  EXPECT_EQ(export_where("AU = 0.1"), "FROM,AU\n0,0.1\n");
}

TEST_F(where_test, absent_numbers_and_blank_texts_can_be_asked_for) {
  EXPECT_EQ(export_where("AU IS ABSENT"), "FROM,AU\n0,\n");
  EXPECT_EQ(export_where("ROCK IS ABSENT"), "FROM,AU\n5,2.5\n");
  EXPECT_EQ(export_where("ROCK IS NOT ABSENT"), "FROM,AU\n0,1.5\n5,0.4\n0,\n0,0.1\n");
  EXPECT_EQ(export_where("NOT (ROCK = 'ORE')"), "FROM,AU\n5,0.4\n5,2.5\n");
}

TEST_F(where_test, implicit_columns_have_a_value_too) {
  run_quietly({"add-implicit", "t.ovt", "ZONE=north"});
  EXPECT_EQ(export_where("ZONE = 'north' AND FROM = 5"), "FROM,AU\n5,0.4\n5,2.5\n");
  EXPECT_EQ(export_where("ZONE = 'south'"), "FROM,AU\n");
}

TEST_F(where_test, head_counts_the_rows_that_meet_the_condition) {
  EXPECT_EQ(run_quietly({"head", "t.ovt", "--columns", "FROM,AU", "--where", "AU > 0.3"}),
            "FROM   AU\n"
            "   0  1.5\n"
            "   5  0.4\n"
            "   5  2.5\n");
  EXPECT_EQ(
      run_quietly({"head", "t.ovt", "--columns", "AU", "--where", "AU > 0.3", "--from", "2", "-n", "1"}),
      " AU\n"
      "0.4\n");
  EXPECT_EQ(run_quietly({"head", "t.ovt", "--columns", "AU", "--where", "AU > 100"}), "AU\n");
  EXPECT_EQ(run_quietly({"head", "t.ovt", "--columns", "AU", "--where", "AU > 1", "-n", "0"}), "AU\n");
}

TEST_F(where_test, head_refuses_a_row_that_is_not_there) {
  expect_failure({"head", "t.ovt", "--where", "AU > 0.3", "--from", "4"},
                 "t.ovt has no row 4 that meets the condition; 3 do");
  expect_failure({"head", "t.ovt", "--where", "AU > 2", "--from", "2"},
                 "t.ovt has no row 2 that meets the condition; 1 does");
}

TEST_F(where_test, a_bad_condition_is_shown_with_its_place) {
  expect_lines("AU >",
               "--where: a value is missing at position 5\n"
               "  AU >\n"
               "      ^\n");
  expect_lines("AU > 1) AND ROCK = 'ORE'",
               "--where: ) is not expected at position 7\n"
               "  AU > 1) AND ROCK = 'ORE'\n"
               "        ^\n");
  expect_lines("ROCK = 'ORE",
               "--where: a text without its closing quote at position 8\n"
               "  ROCK = 'ORE\n"
               "         ^\n");
}

TEST_F(where_test, the_mark_counts_characters) {
  // One character of two UTF-16 units before the place, and one of two bytes.
  expect_lines("ROCK = '\xF0\x9F\x98\x80\xC3\xA4' AND",
               "--where: a value is missing at position 17\n"
               "  ROCK = '\xF0\x9F\x98\x80\xC3\xA4' AND\n"
               "                 ^\n");
  expect_lines("AU\t>\n", "--where: a value is missing at position 6\n  AU > \n       ^\n");
}

TEST_F(where_test, a_long_condition_is_shown_near_the_place) {
  std::string condition = "AU = 1";
  for (int i = 0; i < 20; ++i) condition += " OR AU = 1";
  const std::string shown = "AU = 1 OR AU = 1 OR AU = 1 OR AU = 1 +";
  expect_lines(condition + " +", "--where: a value is missing at position 209\n  " + shown + "\n" +
                                     std::string(2 + shown.size(), ' ') + "^\n");
}

TEST_F(where_test, a_column_that_is_not_there_is_refused) {
  expect_lines("AU > 1 AND ROK = 'ORE'", "t.ovt has no column ROK; it has ROCK\n");
  expect_lines("au > 1", "t.ovt has no column au; it has AU\n");
  expect_lines("GRADE > 1", "t.ovt has no column GRADE; its columns are BHID, FROM, AU, ROCK\n");
}

TEST_F(where_test, a_condition_without_a_column_is_refused) {
  for (const char* condition : {"1 = 1", "1", "", " "}) {
    expect_lines(condition, "--where: the condition names no column, so no row could pass\n");
  }
}

TEST_F(where_test, a_refused_condition_leaves_the_output_as_it_was) {
  write("out.csv", "mine\n");
  EXPECT_EQ(run({"export", "t.ovt", "out.csv", "--where", "AU >"}).status, 1);
  EXPECT_EQ(read("out.csv"), "mine\n");
  EXPECT_EQ(files(), (std::vector<std::string>{"in.csv", "out.csv", "t.ovt"}));
}

TEST_F(where_test, a_table_without_rows_has_none_that_pass) {
  round_trip("A\n");
  EXPECT_EQ(run_quietly({"export", "t.ovt", "--where", "A > 1"}), "A\n");
  EXPECT_EQ(run_quietly({"head", "t.ovt", "--where", "A > 1"}), "A\n");
  expect_failure({"head", "t.ovt", "--where", "B > 1"}, "t.ovt has no column B; its columns are A");
}

}  // namespace
