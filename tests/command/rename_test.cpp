#include "command/command_test.h"

namespace {

using rename_test = ovtest::command_test;

TEST_F(rename_test, a_field_gets_another_name_and_keeps_its_values) {
  for (const std::vector<std::string>& options : {std::vector<std::string>{}, {"--single"}}) {
    round_trip("BHID,FROM,CU\nB1,0,1\nB2,5,\n", options);
    run_quietly({"rename", "t.ovt", "BHID", "HOLE"});
    run_quietly({"rename", "t.ovt", "CU", "CU_PCT"});
    EXPECT_EQ(run_quietly({"export", "t.ovt"}), "HOLE,FROM,CU_PCT\nB1,0,1\nB2,5,\n");
  }
}

TEST_F(rename_test, a_text_of_many_words_is_renamed_whole) {
  round_trip("NAME,A\n\"a text of more than one word\",1\n");
  run_quietly({"rename", "t.ovt", "NAME", "COMMENT"});
  EXPECT_EQ(run_quietly({"export", "t.ovt"}), "COMMENT,A\na text of more than one word,1\n");
}

TEST_F(rename_test, implicit_fields_can_be_renamed) {
  round_trip("A\n1\n", {"--implicit", "ZONE=north"});
  run_quietly({"rename", "t.ovt", "ZONE", "DOMAIN"});
  EXPECT_EQ(run_quietly({"export", "t.ovt"}), "A,DOMAIN\n1,north\n");
}

TEST_F(rename_test, its_own_name_and_another_case_are_allowed) {
  round_trip("AU\n1\n");
  const std::string before = read("t.ovt");
  run_quietly({"rename", "t.ovt", "AU", "AU"});
  EXPECT_TRUE(read("t.ovt") == before);
  run_quietly({"rename", "t.ovt", "AU", "Au"});
  EXPECT_EQ(run_quietly({"export", "t.ovt"}), "Au\n1\n");
}

TEST_F(rename_test, an_unknown_name_tells_which_ones_there_are) {
  round_trip("BHID,FROM,FROM_2,Au,au\nB,1,2,3,4\n");
  expect_failure({"rename", "t.ovt", "from", "X"}, "t.ovt has no column from; it has FROM");
  expect_failure({"rename", "t.ovt", "BHDI", "X"}, "t.ovt has no column BHDI; it has BHID");
  expect_failure({"rename", "t.ovt", "FROM2", "X"}, "t.ovt has no column FROM2; it has FROM, FROM_2");
  expect_failure({"rename", "t.ovt", "AU", "X"}, "t.ovt has no column AU; it has Au, au");
  expect_failure({"rename", "t.ovt", "TO", "X"},
                 "t.ovt has no column TO; its columns are BHID, FROM, FROM_2, Au, au");
}

TEST_F(rename_test, names_that_a_table_cannot_have_change_nothing) {
  round_trip("A,B\n1,2\n");
  const std::string before = read("t.ovt");
  expect_failure({"rename", "t.ovt", "A", "B"}, "t.ovt has a column B already");
  expect_failure({"rename", "t.ovt", "A", ""}, "t.ovt: the name is empty");
  expect_failure({"rename", "t.ovt", "A", "ABCDEFGHI"},
                 "t.ovt: ABCDEFGHI: the name is longer than 8 characters");
  expect_failure({"rename", "t.ovt", "A", "A=B"},
                 "t.ovt: A=B: a name may not hold blanks, control characters or any of ,!:*&=()?");
  expect_failure({"rename", "t.ovt", "A", "@A"}, "t.ovt: @A: a name may not begin with . or @");
  EXPECT_TRUE(read("t.ovt") == before);
}

TEST_F(rename_test, failures_name_the_file) {
  expect_failure({"rename", "none.ovt", "A", "B"}, "none.ovt: File does not exist");
  expect_wrong_usage({"rename", "t.ovt", "A"}, "new is required (see --help)");
}

}  // namespace
