#include "command/edit_fixture.h"

namespace {

using ovtest::names;

class set_test : public ovtest::edit_test {
 protected:
  void make(const names& options = {}) const {
    round_trip("BHID,AU,CU\nH1,1,0.5\nH2,-9,0.25\nH3,-9,\n", options);
  }
};

TEST_F(set_test, rows_that_meet_the_condition_change) {
  in_both([&](const names& options) {
    make(options);
    run_telling({"set", "t.ovt", "AU=absent", "BHID=X", "--where", "AU < 0"}, "2 of 3 rows set");
    EXPECT_EQ(exported(), "BHID,AU,CU\nH1,1,0.5\nX,,0.25\nX,,\n");
    run_telling({"set", "t.ovt", "CU=0.1", "--where", "CU IS ABSENT"}, "1 of 3 rows set");
    EXPECT_EQ(exported(), "BHID,AU,CU\nH1,1,0.5\nX,,0.25\nX,,0.1\n");
  });
}

TEST_F(set_test, the_condition_sees_the_values_from_before) {
  make();
  run_telling({"set", "t.ovt", "AU=5", "--where", "AU <> 5"}, "3 of 3 rows set");
  run_telling({"set", "t.ovt", "AU=6", "--where", "AU = 5 AND CU > 0.3"}, "1 of 3 rows set");
  EXPECT_EQ(exported(), "BHID,AU,CU\nH1,6,0.5\nH2,5,0.25\nH3,5,\n");
}

TEST_F(set_test, all_rows_must_be_asked_for) {
  make();
  expect_wrong_usage({"set", "t.ovt", "AU=1"}, "--where CONDITION or --all is required");
  run_telling({"set", "t.ovt", "AU=-2.5", "--all"}, "3 of 3 rows set");
  EXPECT_EQ(exported(), "BHID,AU,CU\nH1,-2.5,0.5\nH2,-2.5,0.25\nH3,-2.5,\n");
  const ovtest::process_result both = run({"set", "t.ovt", "AU=1", "--all", "--where", "AU > 1"});
  EXPECT_EQ(both.status, 2);
}

TEST_F(set_test, absent_and_blank_have_their_spellings) {
  for (const char* value : {"-", "absent", "", " "}) {
    make();
    run_telling({"set", "t.ovt", std::string("CU=") + value, "--all"}, "3 of 3 rows set");
    EXPECT_EQ(exported(), "BHID,AU,CU\nH1,1,\nH2,-9,\nH3,-9,\n");
  }
  for (const char* value : {"", "  "}) {
    make();
    run_telling({"set", "t.ovt", std::string("BHID=") + value, "--all"}, "3 of 3 rows set");
    EXPECT_EQ(exported(), "BHID,AU,CU\n,1,0.5\n,-9,0.25\n,-9,\n");
  }
  run_telling({"set", "t.ovt", "BHID=-", "--where", "AU = 1"}, "1 of 3 rows set");
  EXPECT_EQ(exported(), "BHID,AU,CU\n-,1,0.5\n,-9,0.25\n,-9,\n");
}

TEST_F(set_test, a_value_may_hold_anything_that_fits) {
  make();
  run_telling({"set", "t.ovt", "BHID=a=,b", "--where", "AU = 1"}, "1 of 3 rows set");
  run_telling({"set", "t.ovt", "BHID=\xC3\xA4\xC3\xB6\xC3\xBC\xE2\x82\xAC", "--where", "BHID = 'H2'"},
              "1 of 3 rows set");
  EXPECT_EQ(exported(), "BHID,AU,CU\n\"a=,b\",1,0.5\n\xC3\xA4\xC3\xB6\xC3\xBC\xE2\x82\xAC,-9,0.25\nH3,-9,\n");
}

TEST_F(set_test, what_does_not_fit_changes_nothing) {
  make();
  expect_unchanged({"set", "t.ovt", "AU=5", "CU=n/a", "--all"},
                   "t.ovt, column CU: n/a is not a number; the column holds numbers");
  expect_unchanged({"set", "t.ovt", "AU=5", "BHID=12345", "--all"},
                   "t.ovt, column BHID: the text has 5 characters, more than the 4 of the column");
  expect_unchanged({"set", "t.ovt", "BHID=\xCE\xB1", "--all"},
                   "t.ovt, column BHID: the value has a character that is not in Windows-1252");
  expect_unchanged({"set", "t.ovt", "ZN=5", "--all"}, "t.ovt has no column ZN; its columns are BHID, AU, CU");
  expect_unchanged({"set", "t.ovt", "AU=5", "--where", "ZN > 1"},
                   "t.ovt has no column ZN; its columns are BHID, AU, CU");
  make({"--single"});
  expect_unchanged({"set", "t.ovt", "AU=1e39", "--all"},
                   "t.ovt, column AU: 1e39 is beyond the range of single precision");
}

TEST_F(set_test, a_number_that_no_table_holds_is_told_as_such) {
  make();
  expect_unchanged({"set", "t.ovt", "AU=1e400", "--all"},
                   "t.ovt, column AU: 1e400 is beyond what a number can hold; the column holds numbers");
  expect_unchanged({"set", "t.ovt", "AU=-1e400", "--all"},
                   "t.ovt, column AU: -1e400 is beyond what a number can hold; the column holds numbers");
  expect_unchanged(
      {"set", "t.ovt", "AU=12345678901234567", "--all"},
      "t.ovt, column AU: 12345678901234567 has more digits than a number can hold; the column holds "
      "numbers");
}

TEST_F(set_test, one_row_is_one_row) {
  round_trip("A\n1\n");
  run_telling({"set", "t.ovt", "A=5", "--all"}, "1 of 1 row set");
}

TEST_F(set_test, single_precision_warns_of_lost_digits) {
  make({"--single"});
  const ovtest::process_result result = run({"set", "t.ovt", "AU=0.123456789", "--where", "AU = 1"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.error, "ovfile: warning: single precision loses digits of AU\novfile: 1 of 3 rows set\n");
  EXPECT_EQ(exported(), "BHID,AU,CU\nH1,0.12345679,0.5\nH2,-9,0.25\nH3,-9,\n");
}

TEST_F(set_test, an_implicit_column_has_no_value_of_its_own) {
  make({"--implicit", "ZONE=north"});
  expect_unchanged({"set", "t.ovt", "ZONE=south", "--all"},
                   "t.ovt: ZONE is implicit, one value for all rows; `ovfile default` changes it");
}

TEST_F(set_test, wrong_usage_is_told) {
  make();
  expect_wrong_usage({"set", "t.ovt", "AU", "--all"}, "AU: expected COLUMN=VALUE");
  expect_wrong_usage({"set", "t.ovt", "AU=1", "AU=2", "--all"}, "AU: the column is given twice");
  EXPECT_EQ(run({"set", "t.ovt", "--all"}).status, 2);
  expect_failure({"set", "none.ovt", "AU=1", "--all"}, "none.ovt: File does not exist");
}

TEST_F(set_test, no_row_may_meet_the_condition) {
  make();
  const std::string before = read("t.ovt");
  run_telling({"set", "t.ovt", "AU=5", "--where", "AU > 100"}, "0 of 3 rows set");
  EXPECT_TRUE(read("t.ovt") == before);
}

TEST_F(set_test, rows_far_apart_are_reached) {
  std::string csv = "A,B\n";
  std::string expected = "A,B\n";
  for (int i = 1; i <= 3000; ++i) {
    csv += std::to_string(i) + ",0\n";
    expected += std::to_string(i) + (i % 700 == 1 ? ",7\n" : ",0\n");
  }
  in_both([&](const names& options) {
    round_trip(csv, options);
    run_telling({"set", "t.ovt", "B=7", "--where", "mod(A, 700) = 1"}, "5 of 3000 rows set");
    EXPECT_EQ(exported(), expected);
  });
}

}  // namespace
