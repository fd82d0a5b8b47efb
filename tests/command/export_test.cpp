#include "command/command_test.h"

namespace {

using names = std::vector<std::string>;
using export_test = ovtest::command_test;

TEST_F(export_test, writes_a_file) {
  write("in.csv", "A,B\n1,x\n");
  run_quietly({"import", "in.csv", "t.ovt"});
  EXPECT_EQ(run_quietly({"export", "t.ovt", "out.csv"}), "");
  EXPECT_EQ(read("out.csv"), "A,B\n1,x\n");
  EXPECT_EQ(files(), (names{"in.csv", "out.csv", "t.ovt"}));
}

TEST_F(export_test, a_hyphen_is_standard_output) {
  round_trip("A\n1\n");
  EXPECT_EQ(run_quietly({"export", "t.ovt", "-"}), "A\n1\n");
}

TEST_F(export_test, absent_numbers_can_have_a_text) {
  round_trip("A,B,T\n1,,x\n,2,\n");
  EXPECT_EQ(run_quietly({"export", "t.ovt", "--absent", "NA"}), "A,B,T\n1,NA,x\nNA,2,\n");
  EXPECT_EQ(run_quietly({"export", "t.ovt", "--absent", "-999"}), "A,B,T\n1,-999,x\n-999,2,\n");
  EXPECT_EQ(run_quietly({"export", "t.ovt", "--absent", "a,b"}), "A,B,T\n1,\"a,b\",x\n\"a,b\",2,\n");
}

TEST_F(export_test, absent_numbers_can_be_left_as_they_are) {
  round_trip("A,B,T\n1,,x\n,2,\n");
  EXPECT_EQ(run_quietly({"export", "t.ovt", "--absent", "keep"}), "A,B,T\n1,-1e+30,x\n-1e+30,2,\n");
  EXPECT_EQ(run_quietly({"export", "t.ovt", "--absent", "null"}), "A,B,T\n1,,x\n,2,\n");
  EXPECT_EQ(run_quietly({"export", "t.ovt", "--absent", "nan"}), "A,B,T\n1,nan,x\nnan,2,\n");
}

TEST_F(export_test, columns_can_be_chosen) {
  round_trip("A,B,C\n1,2,3\n4,5,6\n");
  EXPECT_EQ(run_quietly({"export", "t.ovt", "--columns", "C,A"}), "C,A\n3,1\n6,4\n");
  EXPECT_EQ(run_quietly({"export", "--columns", "C,A", "t.ovt"}), "C,A\n3,1\n6,4\n");
  expect_failure({"export", "t.ovt", "--columns", "A,D"}, "t.ovt has no column D; its columns are A, B, C");
}

TEST_F(export_test, a_column_that_is_not_there_brings_near_names) {
  round_trip("AU_PPM,CU\n1,2\n");
  expect_failure({"export", "t.ovt", "--columns", "CU,au_ppm"}, "t.ovt has no column au_ppm; it has AU_PPM");
  expect_failure({"stats", "t.ovt", "--columns", "CV"}, "t.ovt has no column CV; its columns are AU_PPM, CU");
}

TEST_F(export_test, numbers_have_their_shortest_form) {
  EXPECT_EQ(round_trip("A\n1.50\n100000\n123456789012\n1e15\n1e16\n0.0001\n0.00001\n1e22\n-2e-7\n0.1\n"),
            "A\n1.5\n100000\n123456789012\n1000000000000000\n1e+16\n0.0001\n1e-05\n1e+22\n-2e-07\n0.1\n");
}

TEST_F(export_test, single_precision_numbers_have_a_floats_shortest_form) {
  EXPECT_EQ(round_trip("A\n0.1\n1234.567\n16777216\n1e20\n-0\n", {"--single"}),
            "A\n0.1\n1234.567\n16777216\n1e+20\n-0\n");
}

TEST_F(export_test, an_empty_line_never_stands_for_a_row) {
  EXPECT_EQ(round_trip("A\nx\n\"\"\ny\n"), "A\nx\n\"\"\ny\n");
}

TEST_F(export_test, a_failure_keeps_the_file_that_was_there) {
  write("out.csv", "old");
  write("t.ovt", "no table");
  EXPECT_EQ(run({"export", "t.ovt", "out.csv"}).status, 1);
  EXPECT_EQ(read("out.csv"), "old");
  EXPECT_EQ(files(), (names{"out.csv", "t.ovt"}));
}

TEST_F(export_test, failures_name_the_file) {
  expect_failure({"export", "none.ovt"}, "none.ovt: File does not exist");
  write("x.ovt", std::string(5000, 'x'));
  const ovtest::process_result result = run({"export", "x.ovt"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.error.substr(0, 15), "ovfile: x.ovt: ");
}

TEST_F(export_test, a_table_that_lacks_rows_is_told_by_row) {
  std::string csv = "A\n";
  for (int i = 0; i < 2000; ++i) csv += std::to_string(i) + "\n";
  round_trip(csv);
  std::filesystem::resize_file(folder() / "t.ovt", 4096 * 3);  // 508 rows a page: the header and 1016 rows
  const ovtest::process_result result = run({"export", "t.ovt", "out.csv"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.error.substr(0, 23), "ovfile: t.ovt, row 1017");
  EXPECT_EQ(result.error.find('\n'), result.error.size() - 1);
  EXPECT_EQ(files(), (names{"in.csv", "t.ovt"}));
}

TEST_F(export_test, the_table_is_not_replaced_by_its_csv) {
  round_trip("A\n1\n");
  const std::string before = read("t.ovt");
  expect_wrong_usage({"export", "t.ovt", "./t.ovt"}, "the table and the CSV are one file: ./t.ovt");
  EXPECT_TRUE(read("t.ovt") == before);
}

TEST_F(export_test, a_links_target_is_not_replaced_by_its_csv) {
  round_trip("A\n1\n");
  std::filesystem::rename(folder() / "t.ovt", folder() / "real");
  write("t.ovt", read("real"));
  std::string link = read("real");
  // The description's first word of a double-precision header is word 4; 4 characters to a word.
  const std::string text = "LINKreal .";
  for (std::size_t i = 0; i < 64; ++i) link[32 + i / 4 * 8 + i % 4] = i < text.size() ? text[i] : ' ';
  write("link.ovt", link);
  const std::string before = read("real");
  EXPECT_EQ(run_quietly({"export", "link.ovt"}), "A\n1\n");
  expect_wrong_usage({"export", "link.ovt", "real"}, "the table and the CSV are one file: real");
  expect_wrong_usage({"export", "link.ovt", "link.ovt"}, "the table and the CSV are one file: link.ovt");
  EXPECT_TRUE(read("real") == before);
  EXPECT_TRUE(read("link.ovt") == link);
}

TEST_F(export_test, a_csv_does_not_get_a_tables_name) {
  round_trip("A\n1\n");
  const std::string before = read("t.ovt");
  write("u.ovt", before);
  for (const char* name : {"u.ovt", "new.OVT"}) {
    expect_wrong_usage(
        {"export", "t.ovt", name},
        std::string(name) + ": export does not write tables, and the name is a table's; nothing is written");
  }
  expect_wrong_usage({"import", "u.ovt", "v.ovt"},
                     "u.ovt: import reads CSV and Parquet, and the name is a table's; nothing is written");
  expect_wrong_usage({"import", "in.csv", "out.csv"},
                     "out.csv: import makes a table, and the name is a CSV's; nothing is written");
  EXPECT_TRUE(read("u.ovt") == before);
  EXPECT_EQ(files(), (names{"in.csv", "t.ovt", "u.ovt"}));
}

TEST_F(export_test, a_name_does_not_promise_another_format) {
  round_trip("A\n1\n");
  for (const auto& [name, what] :
       {std::pair("x.json", "JSON"), std::pair("x.XLSX", "a workbook"),
        std::pair("x.csv.gz", "compressed data"), std::pair("x.tsv", "cells with tabs between them"),
        std::pair("x.jsonl", "JSON")}) {
    expect_wrong_usage(
        {"export", "t.ovt", name},
        std::string(name) + ": export writes CSV and Parquet, not " + what + "; nothing is written");
  }
  EXPECT_EQ(files(), (names{"in.csv", "t.ovt"}));
}

}  // namespace
