#include "command/command_test.h"

namespace {

class head_test : public ovtest::command_test {
 protected:
  head_test() {
    std::string csv = "BHID,FROM,CU\n";
    for (int i = 1; i <= 25; ++i) {
      csv += "H" + std::to_string(i) + "," + std::to_string(i * 5) + "," + (i % 2 == 0 ? "0.25" : "") + "\n";
    }
    round_trip(csv);
  }
};

TEST_F(head_test, ten_rows_by_default) {
  EXPECT_EQ(run_quietly({"head", "t.ovt"}),
            "BHID  FROM    CU\n"
            "H1       5      \n"
            "H2      10  0.25\n"
            "H3      15      \n"
            "H4      20  0.25\n"
            "H5      25      \n"
            "H6      30  0.25\n"
            "H7      35      \n"
            "H8      40  0.25\n"
            "H9      45      \n"
            "H10     50  0.25\n");
}

TEST_F(head_test, rows_and_columns_can_be_chosen) {
  EXPECT_EQ(
      run_quietly({"head", "t.ovt", "-n", "2", "--from", "24", "--columns", "CU,BHID", "--absent", "-"}),
      "  CU  BHID\n"
      "0.25  H24\n"
      "   -  H25\n");
}

TEST_F(head_test, the_end_of_the_table_is_the_end) {
  EXPECT_EQ(run_quietly({"head", "t.ovt", "-n", "100", "--from", "25", "--columns", "BHID"}), "BHID\nH25\n");
}

TEST_F(head_test, no_rows_shows_the_names) {
  EXPECT_EQ(run_quietly({"head", "t.ovt", "-n", "0"}), "BHID  FROM  CU\n");
}

TEST_F(head_test, a_row_that_is_not_there_is_refused) {
  expect_failure({"head", "t.ovt", "--from", "26"}, "t.ovt has no row 26; it has 25");
}

TEST_F(head_test, a_column_that_is_not_there_is_refused) {
  expect_failure({"head", "t.ovt", "--columns", "AU"},
                 "t.ovt has no column AU; its columns are BHID, FROM, CU");
}

TEST_F(head_test, a_table_without_rows_shows_its_names) {
  round_trip("A,LONG\n");
  EXPECT_EQ(run_quietly({"head", "t.ovt"}), "A  LONG\n");
}

TEST_F(head_test, control_characters_do_not_reach_the_terminal) {
  round_trip("A,B\n\"x\x1B[31m\ny\",1\n");
  EXPECT_EQ(run_quietly({"head", "t.ovt"}), "A         B\nx.[31m.y  1\n");
}

TEST_F(head_test, columns_are_aligned_by_characters) {
  round_trip("A,B\n\xC3\xA4\xC3\xB6,1\nxyz,2\n");
  EXPECT_EQ(run_quietly({"head", "t.ovt"}), "A    B\n\xC3\xA4\xC3\xB6   1\nxyz  2\n");
}

TEST_F(head_test, absent_numbers_are_shown_as_export_writes_them) {
  round_trip("A\n1\n\"\"\n");
  EXPECT_EQ(run_quietly({"head", "t.ovt", "--absent", "keep"}), "     A\n     1\n-1e+30\n");
  EXPECT_EQ(run_quietly({"head", "t.ovt", "--absent", "null"}), "A\n1\n \n");
  EXPECT_EQ(run_quietly({"head", "t.ovt", "--absent", "-"}), "A\n1\n-\n");
}

}  // namespace
