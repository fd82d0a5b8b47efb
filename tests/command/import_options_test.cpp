// The options of import, and the names and sizes it has to fit in.
#include "command/import_fixture.h"

namespace {

using ovtest::import_test;
using ovtest::names;

TEST_F(import_test, names_are_changed_and_reported) {
  write("in.csv", "Au_Lagrange,CU,,CU,a b\n1,2,3,4,5\n");
  const ovtest::process_result result = run({"import", "in.csv", "t.ovt"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.error,
            "ovfile: column 1 \"Au_Lagrange\" becomes Au_Lagra\n"
            "ovfile: column 3 has no name and becomes COL3\n"
            "ovfile: column 4 \"CU\", a repeated name, becomes CU_2\n"
            "ovfile: column 5 \"a b\" becomes a_b\n");
  EXPECT_EQ(run_quietly({"export", "t.ovt"}), "Au_Lagra,CU,COL3,CU_2,a_b\n1,2,3,4,5\n");
}

TEST_F(import_test, single_precision_warns_of_lost_digits_once) {
  write("in.csv", "ID,X,Y,CU\na,2296021.09,0.123456789,0.0299999993\n");
  const ovtest::process_result result = run({"import", "--single", "in.csv", "t.ovt"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.error, "ovfile: warning: single precision loses digits of X, Y\n");
  EXPECT_EQ(run_quietly({"export", "t.ovt"}), "ID,X,Y,CU\na,2296021,0.12345679,0.03\n");
  EXPECT_EQ(info()["precision"], "single");
}

TEST_F(import_test, a_number_beyond_single_precision_stops) {
  expect_no_table("A,B\n1,1\n2,1e39\n",
                  "in.csv, line 3, column 2 (B): 1e39 is beyond the range of single precision", {"--single"});
  EXPECT_EQ(round_trip("A\n1e39\nx\n", {"--single"}), "A\n1e39\nx\n");  // a column of text keeps it
}

TEST_F(import_test, text_can_be_forced) {
  EXPECT_EQ(fields_of("A,B,C\n1,2,x\n3,4,y\n", {"--text", "A:3", "--text", "C:12"}),
            (names{"A:text:4", "B:number:4", "C:text:12"}));
  EXPECT_EQ(run_quietly({"export", "t.ovt"}), "A,B,C\n1,2,x\n3,4,y\n");
}

TEST_F(import_test, a_forced_text_is_found_by_its_old_and_its_new_name) {
  EXPECT_EQ(fields_of("Sample:Id\n1\n", {"--text", "Sample:Id:8"}), names{"Sample_I:text:8"});
  EXPECT_EQ(fields_of("Sample:Id\n1\n", {"--text", "Sample_I:8"}), names{"Sample_I:text:8"});
}

TEST_F(import_test, a_text_longer_than_the_forced_width_stops) {
  expect_no_table("A,B\n1,abc\n2,abcd\n3,abcde\n",
                  "in.csv, line 3, column 2 (B): the text has 4 characters, more than the 3 of --text",
                  {"--text", "B:3"});
  EXPECT_EQ(round_trip("A,B\n1,\"abc  \"\n2,\xC3\xA4\xC3\xB6\xC3\xBC\n", {"--text", "B:3"}),
            "A,B\n1,abc\n2,\xC3\xA4\xC3\xB6\xC3\xBC\n");
}

TEST_F(import_test, a_forced_text_must_be_there) {
  expect_no_table("A,B\n1,2\n", "in.csv has no column C (--text)", {"--text", "C:4"});
}

TEST_F(import_test, a_forced_text_needs_a_name_and_a_width) {
  for (const char* wrong : {"A", ":4", "A:", "A:0", "A:-4", "A:x", "A:1.5", "A:1025"}) {
    expect_wrong_usage({"import", "in.csv", "t.ovt", "--text", wrong},
                       std::string("--text ") + wrong + ": expected NAME:WIDTH, a width of 1 to 1024");
  }
}

TEST_F(import_test, implicit_columns_have_one_value) {
  write("in.csv", "A\n1\n2\n");
  run_quietly({"import", "in.csv", "t.ovt", "--implicit", "NX=-5.5", "--implicit", "ZONE=north end",
               "--implicit", "GAP="});
  EXPECT_EQ(run_quietly({"export", "t.ovt"}), "A,NX,ZONE,GAP\n1,-5.5,north end,\n2,-5.5,north end,\n");
  const auto fields = info()["fields"];
  EXPECT_EQ(fields[0]["implicit"], false);
  EXPECT_EQ(fields[1], nlohmann::json::parse(
                           R"({"name":"NX","type":"number","width":4,"implicit":true,"default":-5.5})"));
  EXPECT_EQ(fields[2],
            nlohmann::json::parse(
                R"({"name":"ZONE","type":"text","width":12,"implicit":true,"default":"north end"})"));
  EXPECT_EQ(fields[3], nlohmann::json::parse(
                           R"({"name":"GAP","type":"number","width":4,"implicit":true,"default":null})"));
  EXPECT_EQ(info()["record_words"], 1);
}

TEST_F(import_test, an_implicit_column_may_be_absent) {
  for (const char* value : {"-", "absent", ""}) {
    write("in.csv", "A\n1\n");
    run_quietly({"import", "in.csv", "t.ovt", "--implicit", std::string("GAP=") + value});
    EXPECT_EQ(
        info()["fields"][1],
        nlohmann::json::parse(R"({"name":"GAP","type":"number","width":4,"implicit":true,"default":null})"));
  }
}

TEST_F(import_test, implicit_columns_are_checked) {
  const std::string csv = "A,B\n1,2\n";
  expect_no_table(csv, "--implicit A: in.csv has a column of that name", {"--implicit", "A=1"});
  expect_no_table(csv, "--implicit N: the name is given twice", {"--implicit", "N=1", "--implicit", "N=2"});
  expect_no_table(csv, "--implicit ABCDEFGHI: the name is longer than 8 characters",
                  {"--implicit", "ABCDEFGHI=1"});
  expect_no_table(csv, "--implicit N M: a name may not hold blanks, control characters or any of ,!:*&=()?",
                  {"--implicit", "N M=1"});
  expect_no_table(csv, "--implicit N: the value has a character that is not in Windows-1252",
                  {"--implicit", "N=\xCE\xB1"});
  expect_no_table(csv, "--implicit N: 1e39 is beyond the range of single precision",
                  {"--single", "--implicit", "N=1e39"});
  expect_wrong_usage({"import", "in.csv", "t.ovt", "--implicit", "N"}, "--implicit N: expected NAME=VALUE");
}

TEST_F(import_test, the_description_is_kept_whole) {
  const std::string text = "Assays of 2024, checked twice, 64 characters long: 90123456789xy";
  ASSERT_EQ(text.size(), 64u);
  round_trip("A\n1\n", {"--description", text});
  EXPECT_EQ(info()["description"], text);
}

TEST_F(import_test, descriptions_that_a_table_cannot_have_are_refused) {
  const std::string csv = "A\n1\n";
  expect_no_table(
      csv, "--description: a description that begins with LINK would make the table a link to another file",
      {"--description", "LINKother.ovt ."});
  expect_no_table(csv, "--description: the text has 65 characters; a table keeps 64",
                  {"--description", std::string(65, 'x')});
  expect_no_table(csv, "--description: the text has a character that is not in Windows-1252",
                  {"--description", "\xCE\xB1"});
}

/// A header of so many columns and one row of numbers.
std::string wide_csv(int columns) {
  std::string header;
  std::string row;
  for (int i = 1; i <= columns; ++i) {
    header += (i > 1 ? ",C" : "C") + std::to_string(i);
    row += (i > 1 ? "," : "") + std::to_string(i);
  }
  return header + "\n" + row + "\n";
}

TEST_F(import_test, as_many_words_as_fit_are_taken) {
  EXPECT_EQ(round_trip(wide_csv(64), {"--single"}), wide_csv(64));
  EXPECT_EQ(round_trip(wide_csv(256)), wide_csv(256));
}

TEST_F(import_test, more_words_than_fit_are_refused) {
  expect_no_table(wide_csv(65), "t.ovt: 65 columns are too many; a single-precision table holds at most 64",
                  {"--single"});
  expect_no_table(wide_csv(256),
                  "t.ovt: 257 columns are too many; a double-precision table holds at most 256",
                  {"--implicit", "N=1"});
  expect_no_table(
      "A,B\n" + std::string(253, 'x') + ",1\n",
      "t.ovt: the table would need 65 words; a single-precision one holds 64 (a number takes one, a text "
      "one for every 4 characters)",
      {"--single"});
  expect_no_table("A,B\n" + std::string(1021, 'x') + ",1\n",
                  "t.ovt: the table would need 257 words; a double-precision one holds 256 (a number takes "
                  "one, a text one "
                  "for every 4 characters)");
}

}  // namespace
