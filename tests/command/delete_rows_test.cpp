#include <array>
#include <nlohmann/json.hpp>

#include "command/edit_fixture.h"

namespace {

using ovtest::names;

class delete_rows_test : public ovtest::edit_test {
 protected:
  void make(const names& options = {}) const { round_trip("A,B\n1,a\n2,\n3,c\n4,d\n5,e\n", options); }
};

TEST_F(delete_rows_test, rows_that_meet_the_condition_go) {
  in_both([&](const names& options) {
    make(options);
    run_telling({"delete-rows", "t.ovt", "--where", "A > 1 AND A < 4"}, "2 of 5 rows deleted");
    EXPECT_EQ(exported(), "A,B\n1,a\n4,d\n5,e\n");
    EXPECT_EQ(files(), (names{"in.csv", "t.ovt"}));
  });
}

TEST_F(delete_rows_test, rows_can_be_listed) {
  make();
  run_telling({"delete-rows", "t.ovt", "--rows", "5,1-2,2"}, "3 of 5 rows deleted");
  EXPECT_EQ(exported(), "A,B\n3,c\n4,d\n");
}

TEST_F(delete_rows_test, lists_may_overlap_and_stand_in_any_order) {
  make();
  run_telling({"delete-rows", "t.ovt", "--rows", "4-5,2,3-4,2-2,4"}, "4 of 5 rows deleted");
  EXPECT_EQ(exported(), "A,B\n1,a\n");
  expect_unchanged({"delete-rows", "t.ovt", "--rows", "2"}, "t.ovt has no row 2; it has 1");
  run_telling({"delete-rows", "t.ovt", "--rows", "1"}, "1 of 1 row deleted");
  expect_unchanged({"delete-rows", "t.ovt", "--rows", "1"}, "t.ovt has no row 1; it has 0");
}

TEST_F(delete_rows_test, all_rows_may_go) {
  in_both([&](const names& options) {
    make(options);
    run_telling({"delete-rows", "t.ovt", "--rows", "1-5"}, "5 of 5 rows deleted");
    EXPECT_EQ(exported(), "A,B\n");
    EXPECT_EQ(nlohmann::json::parse(run_quietly({"info", "t.ovt", "--json"}))["rows"], 0);
  });
}

TEST_F(delete_rows_test, the_last_row_stays_when_another_goes) {
  make();
  run_telling({"delete-rows", "t.ovt", "--rows", "4"}, "1 of 5 rows deleted");
  EXPECT_EQ(exported(), "A,B\n1,a\n2,\n3,c\n5,e\n");
}

TEST_F(delete_rows_test, no_row_may_meet_the_condition) {
  make();
  const std::string before = read("t.ovt");
  run_telling({"delete-rows", "t.ovt", "--where", "A > 5"}, "0 of 5 rows deleted");
  EXPECT_TRUE(read("t.ovt") == before);
}

TEST_F(delete_rows_test, what_is_not_there_changes_nothing) {
  make();
  expect_unchanged({"delete-rows", "t.ovt", "--rows", "1,6"}, "t.ovt has no row 6; it has 5");
  expect_unchanged({"delete-rows", "t.ovt", "--rows", "4-2147483647"}, "t.ovt has no row 6; it has 5");
  expect_unchanged({"delete-rows", "t.ovt", "--where", "Z > 5"},
                   "t.ovt has no column Z; its columns are A, B");
  expect_unchanged({"delete-rows", "t.ovt", "--where", ""},
                   "--where: the condition names no column, so no row could pass");
}

TEST_F(delete_rows_test, wrong_usage_is_told) {
  make();
  expect_wrong_usage({"delete-rows", "t.ovt"}, "--where CONDITION or --rows LIST is required");
  const std::string form = "expected a row or a range like 10-20";
  const std::vector<std::array<std::string, 3>> lists = {
      {"0", "0", "rows count from 1"},
      {"2,0-3", "0-3", "rows count from 1"},
      {"x", "x", form},
      {"3,1x-5", "1x-5", form},
      {"1-", "1-", form},
      {"-3", "-3", form},
      {"1-2-3", "1-2-3", form},
      {"1-+3", "1-+3", form},
      {"1, 2", " 2", form},
      {"1.5", "1.5", form},
      {"5,3-2", "3-2", "the range ends before it begins"},
      {"1,,2", "", "a row or a range is missing"},
      {"1,", "", "a row or a range is missing"},
      {",", "", "a row or a range is missing"},
      {"2147483648", "2147483648", "no table has so many rows"},
      {"1-99999999999999999999", "1-99999999999999999999", "no table has so many rows"}};
  for (const auto& [list, piece, problem] : lists) {
    expect_wrong_usage({"delete-rows", "t.ovt", "--rows=" + list},
                       "--rows " + list + ": \"" + piece + "\": " + problem);
  }
  EXPECT_EQ(run({"delete-rows", "t.ovt", "--rows", "1", "--where", "A > 1"}).status, 2);
}

}  // namespace
