#include "command/command_test.h"

#include <nlohmann/json.hpp>

namespace {

using names = std::vector<std::string>;

class import_test : public ovtest::command_test {
 protected:
  nlohmann::json info() const { return nlohmann::json::parse(run_quietly({"info", "t.ovt", "--json"})); }

  /// "name:type:width" of each field.
  names fields_of(const std::string& csv, std::vector<std::string> options = {}) const {
    write("in.csv", csv);
    options.insert(options.begin(), {"import", "in.csv", "t.ovt"});
    EXPECT_EQ(run(options).status, 0);
    names fields;
    const nlohmann::json table = info();
    for (const auto& field : table["fields"]) {
      fields.push_back(field["name"].get<std::string>() + ":" + field["type"].get<std::string>() + ":" +
                       std::to_string(field["width"].get<int>()));
    }
    return fields;
  }

  /// Expects the import to fail with this line and to leave nothing behind.
  void expect_no_table(const std::string& csv, const std::string& line,
                       std::vector<std::string> options = {}) {
    write("in.csv", csv);
    options.insert(options.begin(), {"import", "in.csv", "t.ovt"});
    expect_failure(options, line);
    EXPECT_EQ(files(), names{"in.csv"});
  }
};

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
  EXPECT_EQ(round_trip("N\xF6,B\nM\xFCnze,1\n\x80\x80\x80\x80,2\nz\xC3\xBC,3\n"),
            "N\xC3\xB6,B\nM\xC3\xBCnze,1\n\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC,"
            "2\nz\xC3\x83\xC2\xBC,3\n");
}

TEST_F(import_test, a_character_outside_windows_1252_stops) {
  expect_no_table(
      "A,B\n1,x\n2,\xCE\xB1\n",
      "in.csv, line 3, column 2 (B): the character U+03B1 is not in Windows-1252, in which tables keep text");
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

TEST_F(import_test, a_row_with_a_wrong_number_of_cells_stops) {
  expect_no_table("A,B,C\n1,2,3\n4,5\n", "in.csv, line 3, column 3: the row has 2 cells, the header has 3");
  expect_no_table("A,B\n1,2\n4,5,6\n", "in.csv, line 3, column 3: the row has 3 cells, the header has 2");
  expect_no_table("A,B\n\"x\ny\",2\n4\n", "in.csv, line 4, column 2: the row has 1 cells, the header has 2");
}

TEST_F(import_test, what_is_no_csv_stops) {
  expect_no_table("A,B\n1,\"2\n", "in.csv, line 2, column 2: the quote that opens here is not closed");
  expect_no_table("A,B\n1,\"2\"x\n", "in.csv, line 2, column 2: text follows the closing quote");
  expect_no_table("", "in.csv, line 1, column 1: the file is empty; it needs a line of column names");
}

TEST_F(import_test, a_file_that_is_not_there_is_named) {
  const ovtest::process_result result = run({"import", "none.csv", "t.ovt"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.error, "ovfile: cannot open none.csv: No such file or directory\n");
  EXPECT_EQ(files(), names{});
}

TEST_F(import_test, a_folder_that_is_not_there_is_no_place_for_a_table) {
  write("in.csv", "A\n1\n");
  const ovtest::process_result result = run({"import", "in.csv", "none/t.ovt"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.error, "ovfile: cannot create none/t.ovt: No such file or directory\n");
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

TEST_F(import_test, a_table_that_was_there_is_replaced) {
  write("in.csv", "A\n1\n2\n");
  run_quietly({"import", "in.csv", "t.ovt"});
  EXPECT_EQ(round_trip("B\n3\n"), "B\n3\n");
  EXPECT_EQ(files(), (names{"in.csv", "t.ovt"}));
}

TEST_F(import_test, the_csv_is_not_replaced_by_its_table) {
  write("in.csv", "A\n1\n");
  expect_wrong_usage({"import", "in.csv", "./in.csv"}, "the CSV and the table are one file: in.csv");
  EXPECT_EQ(read("in.csv"), "A\n1\n");
}

TEST_F(import_test, standard_input_is_read) {
  EXPECT_EQ(run_quietly({"import", "-", "t.ovt"}, "A,B\n1,x\n2,yyyyy\n"), "");
  EXPECT_EQ(run_quietly({"export", "t.ovt"}), "A,B\n1,x\n2,yyyyy\n");
  EXPECT_EQ(files(), names{"t.ovt"});
}

TEST_F(import_test, messages_about_standard_input_have_its_name) {
  expect_failure({"import", "-", "t.ovt"},
                 "standard input, line 2, column 2: the row has 1 cells, the header has 2", "A,B\n1\n");
}

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
  expect_no_table(
      wide_csv(65),
      "the table would need 65 words; a single-precision one holds 64 (a number takes one, a text one for "
      "every 4 characters)",
      {"--single"});
  expect_no_table(
      wide_csv(256),
      "the table would need 257 words; a double-precision one holds 256 (a number takes one, a text one "
      "for every 4 characters)",
      {"--implicit", "N=1"});
  expect_no_table(
      "A,B\n" + std::string(1021, 'x') + ",1\n",
      "the table would need 257 words; a double-precision one holds 256 (a number takes one, a text one "
      "for every 4 characters)");
}

TEST_F(import_test, many_rows_come_back) {
  std::string csv = "ID,N\n";
  for (int i = 0; i < 20000; ++i) csv += "h" + std::to_string(i % 977) + "," + std::to_string(i) + ".25\n";
  EXPECT_EQ(round_trip(csv), csv);
}

}  // namespace
