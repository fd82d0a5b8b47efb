// What stops an import, in which words, and what it leaves behind.
#include "command/import_fixture.h"

namespace {

using ovtest::import_test;
using ovtest::names;

TEST_F(import_test, a_character_outside_windows_1252_stops) {
  expect_no_table(
      "A,B\n1,x\n2,\xCE\xB1\n",
      "in.csv, line 3, column 2 (B): the character U+03B1 is not in Windows-1252, in which tables keep text");
}

TEST_F(import_test, what_is_no_text_is_told_by_what_it_is) {
  using namespace std::string_literals;
  expect_no_table("PK\x03\x04 and more",
                  "in.csv is a ZIP archive (as the files of spreadsheets are), not a CSV");
  expect_no_table("\x1F\x8B\x08\0"s, "in.csv is compressed by gzip, not a CSV");
  expect_no_table("BZh91AY&SY..", "in.csv is compressed by bzip2, not a CSV");
  expect_no_table("PAR1\x15\x04", "in.csv is a Parquet file, not a CSV");
  expect_no_table("SQLite format 3\0"s, "in.csv is a database of SQLite, not a CSV");
  expect_no_table("\xD0\xCF\x11\xE0\xA1\xB1", "in.csv is an old file of a spreadsheet, not a CSV");
}

TEST_F(import_test, a_table_does_not_go_to_standard_output) {
  write("in.csv", "A\n1\n");
  expect_wrong_usage({"import", "in.csv", "-"},
                     "-: this is not written to standard output; ./- is a file of that name");
  EXPECT_EQ(files(), names{"in.csv"});
}

TEST_F(import_test, a_nul_character_stops) {
  expect_no_table(std::string("A,B\n1,x\0y\n", 10),
                  "in.csv, line 2, column 2 (B): a table cannot keep a NUL character");
}

TEST_F(import_test, the_first_problem_in_the_file_is_told) {
  expect_no_table(
      "A,B\n1,\xCE\xB1\n2\n",
      "in.csv, line 2, column 2 (B): the character U+03B1 is not in Windows-1252, in which tables keep text");
}

TEST_F(import_test, more_columns_than_a_table_holds_stop_before_anything_else) {
  std::string header = "A";
  for (int i = 1; i < 20'000; ++i) header += ",A";
  expect_no_table(header + "\n1\n",
                  "t.ovt: 20000 columns are too many; a double-precision table holds at most 256");
}

TEST_F(import_test, a_row_with_a_wrong_number_of_cells_stops) {
  expect_no_table("A,B,C\n1,2,3\n4,5\n", "in.csv, line 3, column 3: the row has 2 cells, the header has 3");
  expect_no_table("A,B\n1,2\n4,5,6\n", "in.csv, line 3, column 3: the row has 3 cells, the header has 2");
  expect_no_table("A,B\n\"x\ny\",2\n4\n", "in.csv, line 4, column 2: the row has 1 cell, the header has 2");
  expect_no_table(" \n\nA,B\n1\n", "in.csv, line 4, column 2: the row has 1 cell, the header has 2");
}

TEST_F(import_test, what_is_no_csv_stops) {
  expect_no_table("A,B\n1,\"2\n", "in.csv, line 2, column 2: the quote that opens here is not closed");
  expect_no_table("A,B\n1,\"2\"x\n", "in.csv, line 2, column 2: text follows the closing quote");
  for (const char* csv : {"", " \n\t\n"}) {
    expect_no_table(csv, "in.csv, line 1, column 1: the file is empty; it needs a line of column names");
  }
}

TEST_F(import_test, a_file_that_is_not_there_is_named) {
  const ovtest::process_result result = run({"import", "none.csv", "t.ovt"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.error, "ovfile: cannot open none.csv: No such file or directory\n");
  EXPECT_EQ(files(), names{});
}

TEST_F(import_test, a_folder_that_is_not_there_is_no_place_for_a_table) {
  write("in.csv", "A\n1\n");
  expect_failure_with_reason({"import", "in.csv", "none/t.ovt"}, "cannot create none/t.ovt");
  EXPECT_EQ(files(), names{"in.csv"});
}

TEST_F(import_test, a_folder_is_not_replaced) {
  write("in.csv", "A\n1\n");
  std::filesystem::create_directory(folder() / "t.ovt");
  expect_failure({"import", "in.csv", "t.ovt"}, "cannot write t.ovt: it is not a regular file");
  EXPECT_EQ(files(), (names{"in.csv", "t.ovt"}));
}

TEST_F(import_test, a_failure_keeps_the_table_that_was_there) {
  write("in.csv", "A\n1\n");
  run_quietly({"import", "in.csv", "t.ovt"});
  const std::string before = read("t.ovt");
  write("in.csv", "A,B\n1,2\n3\n");
  EXPECT_EQ(run({"import", "in.csv", "t.ovt"}).status, 1);
  EXPECT_TRUE(read("t.ovt") == before);
  EXPECT_EQ(files(), (names{"in.csv", "t.ovt"}));
}

TEST_F(import_test, the_csv_is_not_replaced_by_its_table) {
  write("in.csv", "A\n1\n");
  expect_wrong_usage({"import", "in.csv", "./in.csv"}, "the CSV and the table are one file: in.csv");
  EXPECT_EQ(read("in.csv"), "A\n1\n");
}

TEST_F(import_test, messages_about_standard_input_have_its_name) {
  expect_failure({"import", "-", "t.ovt"},
                 "standard input, line 2, column 2: the row has 1 cell, the header has 2", "A,B\n1\n");
}

}  // namespace
