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
  for (const char* wrong : {"0", "x", "3-2", "1,,2", "1-", "-3", "1,", "2147483648", "1-2-3"}) {
    expect_wrong_usage({"delete-rows", "t.ovt", std::string("--rows=") + wrong},
                       std::string("--rows ") + wrong + ": expected rows and ranges like 3,10-20");
  }
  EXPECT_EQ(run({"delete-rows", "t.ovt", "--rows", "1", "--where", "A > 1"}).status, 2);
}

}  // namespace
