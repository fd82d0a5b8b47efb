// What an import makes of a CSV.
#include "command/import_fixture.h"

namespace {

using ovtest::import_test;
using ovtest::names;

TEST_F(import_test, values_come_back) {
  EXPECT_EQ(round_trip("BHID,FROM,TO,CU\nB1,0,1.5,0.0299999993\nB2,1.5,2517.4,\n"),
            "BHID,FROM,TO,CU\nB1,0,1.5,0.0299999993\nB2,1.5,2517.4,\n");
}

TEST_F(import_test, types_come_from_the_data) {
  EXPECT_EQ(fields_of("N,T,MIXED,EMPTY,ID,LATE\n1,a,1,,007,1\n-2.5,abcde,x,,8,2\n3e3,,2,,9,3b\n"),
            (names{"N:number:4", "T:text:8", "MIXED:text:4", "EMPTY:number:4", "ID:text:4", "LATE:text:4"}));
  EXPECT_EQ(run_quietly({"export", "t.ovt"}),
            "N,T,MIXED,EMPTY,ID,LATE\n1,a,1,,007,1\n-2.5,abcde,x,,8,2\n3000,,2,,9,3b\n");
}

TEST_F(import_test, cells_that_would_not_read_back_make_a_column_text) {
  for (const char* cell : {"0123", "+1", "0x1F", "nan", "inf", "-inf", "12345678901234567", "1e400", "1-2"}) {
    const std::string csv = std::string("A\n1\n") + cell + "\n";
    EXPECT_EQ(round_trip(csv), csv);
    EXPECT_EQ(info()["fields"][0]["type"], "text") << cell;
  }
}

TEST_F(import_test, numbers_are_doubles_by_default) {
  EXPECT_EQ(round_trip("A\n0.1\n2296021.09\n-0\n1e300\n123456789.123456\n"),
            "A\n0.1\n2296021.09\n-0\n1e+300\n123456789.123456\n");
  EXPECT_EQ(info()["precision"], "double");
}

TEST_F(import_test, the_absent_number_is_an_empty_cell) {
  EXPECT_EQ(round_trip("A,B\n-1e30,1\n,2\n \t,3\n"), "A,B\n,1\n,2\n,3\n");
  EXPECT_EQ(round_trip("A,B\n-1e30,1\n,2\n", {"--single"}), "A,B\n,1\n,2\n");
}

TEST_F(import_test, the_longest_value_gives_the_width) {
  EXPECT_EQ(fields_of("A,B,C\nx,abcd,abcde\n"), (names{"A:text:4", "B:text:4", "C:text:8"}));
  EXPECT_EQ(fields_of("A\nabcd   \t\n"), names{"A:text:4"});
}

TEST_F(import_test, blanks_at_the_end_of_a_text_go_and_others_stay) {
  EXPECT_EQ(round_trip("A,B\n\"  x y  \",1\n"), "A,B\n  x y,1\n");
}

TEST_F(import_test, quotes_commas_and_line_ends_come_back) {
  const std::string csv = "A,B\n\"a,b\",1\n\"say \"\"hi\"\"\",2\n\"two\nlines\",3\n";
  EXPECT_EQ(round_trip(csv), csv);
}

TEST_F(import_test, every_line_end_will_do) {
  EXPECT_EQ(round_trip("A,B\r\n1,x\r\n2,y\r\n"), "A,B\n1,x\n2,y\n");
  EXPECT_EQ(round_trip("A,B\r1,x\r2,y"), "A,B\n1,x\n2,y\n");
}

TEST_F(import_test, a_byte_order_mark_is_no_part_of_the_first_name) {
  EXPECT_EQ(round_trip("\xEF\xBB\xBF"
                       "A,B\n1,2\n"),
            "A,B\n1,2\n");
}

TEST_F(import_test, lines_without_a_character_are_no_rows) {
  EXPECT_EQ(round_trip("A,B\n1,2\n\n3,4\n\n\n"), "A,B\n1,2\n3,4\n");
}

TEST_F(import_test, in_a_single_column_an_empty_line_is_an_absent_number) {
  EXPECT_EQ(round_trip("A\n1\n\n3\n"), "A\n1\n\"\"\n3\n");
}

TEST_F(import_test, a_header_alone_makes_a_table_without_rows) {
  EXPECT_EQ(round_trip("A,B\n"), "A,B\n");
  EXPECT_EQ(info()["rows"], 0);
}

TEST_F(import_test, utf8_text_is_kept) {
  EXPECT_EQ(round_trip("N\xC3\xB6,B\nM\xC3\xBCnze,1\n\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC,2\n"),
            "N\xC3\xB6,B\nM\xC3\xBCnze,1\n\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC,2\n");
  EXPECT_EQ(info()["fields"][0]["width"], 8);  // five characters; the other value has four
}

TEST_F(import_test, what_is_no_utf8_is_windows_1252) {
  EXPECT_EQ(round_trip("N\xF6,B\nM\xFCnze,1\n\x80\x80\x80\x80,2\n"),
            "N\xC3\xB6,B\nM\xC3\xBCnze,1\n\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC,2\n");
}

TEST_F(import_test, a_cell_that_is_no_utf8_leaves_the_others_as_they_are) {
  write("in.csv", "N,B\nM\xC3\xBCnze,1\nM\xFCnze,2\nz,3\n");
  const ovtest::process_result end = run({"import", "in.csv", "t.ovt"});
  EXPECT_EQ(end.status, 0);
  EXPECT_EQ(
      end.error,
      "ovfile: warning: in.csv, line 3, column 1 is not UTF-8 as other cells are; such cells are read as "
      "Windows-1252\n");
  EXPECT_EQ(run_quietly({"export", "t.ovt"}), "N,B\nM\xC3\xBCnze,1\nM\xC3\xBCnze,2\nz,3\n");
}

TEST_F(import_test, lines_without_a_character_stand_before_the_names) {
  EXPECT_EQ(round_trip("\n\r\nA,B\n1,x\n"), "A,B\n1,x\n");
}

TEST_F(import_test, lines_of_blanks_stand_before_the_names) {
  EXPECT_EQ(round_trip(" \n\t \r\n\nA,B\n1,x\n"), "A,B\n1,x\n");
  EXPECT_EQ(round_trip(" \nA\n1\n"), "A\n1\n");
}

TEST_F(import_test, other_signs_between_cells_are_told) {
  for (const auto& [csv, what] : {std::pair("A;B\n1;2\n", "semicolons"), std::pair("A\tB\n1\t2\n", "tabs"),
                                  std::pair("A|B\n1|2\n", "bars")}) {
    write("in.csv", csv);
    const ovtest::process_result end = run({"import", "in.csv", "t.ovt"});
    EXPECT_EQ(end.status, 0);
    EXPECT_NE(end.error.find("ovfile: warning: in.csv has " + std::string(what) +
                             " and no comma in its first line; all of it is one column\n"),
              end.error.npos)
        << end.error;
  }
}

TEST_F(import_test, other_signs_between_cells_are_told_where_rows_do_not_fit) {
  write("in.csv", "N;W\n1,5;2\n");
  expect_failure(
      {"import", "in.csv", "t.ovt"},
      "in.csv, line 2, column 2: the row has 2 cells, the header has 1; there are semicolons and no "
      "comma in its first line");
}

TEST_F(import_test, names_of_another_encoding_are_told) {
  write("in.csv", "N\xFCm,B\nZ\xC3\xBCrich,1\n");
  EXPECT_NE(run({"import", "in.csv", "t.ovt"})
                .error.find("warning: in.csv, line 1, column 1 is not UTF-8 as other cells are"),
            std::string::npos);
}

TEST_F(import_test, a_table_is_no_csv_whatever_its_name) {
  round_trip("A\n1\n");
  std::filesystem::copy_file(folder() / "t.ovt", folder() / "table.csv");
  const ovtest::process_result end = run({"import", "table.csv", "u.ovt"});
  EXPECT_EQ(end.status, 1);
  EXPECT_NE(end.error.find("table.csv"), end.error.npos);
  EXPECT_NE(end.error.find("a table already"), end.error.npos) << end.error;
  EXPECT_FALSE(std::filesystem::exists(folder() / "u.ovt"));
}

TEST_F(import_test, a_table_that_was_there_is_replaced) {
  write("in.csv", "A\n1\n2\n");
  run_quietly({"import", "in.csv", "t.ovt"});
  EXPECT_EQ(round_trip("B\n3\n"), "B\n3\n");
  EXPECT_EQ(files(), (names{"in.csv", "t.ovt"}));
}

TEST_F(import_test, standard_input_is_read) {
  EXPECT_EQ(run_quietly({"import", "-", "t.ovt"}, "A,B\n1,x\n2,yyyyy\n"), "");
  EXPECT_EQ(run_quietly({"export", "t.ovt"}), "A,B\n1,x\n2,yyyyy\n");
  EXPECT_EQ(files(), names{"t.ovt"});
}

TEST_F(import_test, many_rows_come_back) {
  std::string csv = "ID,N\n";
  for (int i = 0; i < 20000; ++i) csv += "h" + std::to_string(i % 977) + "," + std::to_string(i) + ".25\n";
  EXPECT_EQ(round_trip(csv), csv);
}

}  // namespace
