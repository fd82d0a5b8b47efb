#include <cstring>
#include <limits>

#include <nlohmann/json.hpp>

#include "command/command_test.h"
#include "support/shared_data.h"

namespace {

using names = std::vector<std::string>;

class verify_test : public ovtest::command_test {
 protected:
  /// A table of 600 rows: a number and a text; two pages of 254 and one of 92.
  void SetUp() override {
    command_test::SetUp();
    std::string csv = "A,B\n";
    for (int i = 1; i <= 600; ++i) csv += std::to_string(i) + ",ab\n";
    round_trip(csv);
    table_ = read("t.ovt");
  }

  void put(std::size_t word, double number) {
    std::memcpy(table_.data() + word * 8, &number, sizeof number);
    write("t.ovt", table_);
  }

  void expect(int status, const std::string& words) const {
    const ovtest::process_result end = run({"verify", "t.ovt"});
    EXPECT_EQ(end.status, status) << end.error;
    EXPECT_EQ(end.output, words);
  }

  /// A table whose description leads to another one.
  void make_link(const std::string& name, const std::string& target) const {
    std::string link = table_;
    const std::string text = "LINK" + target + " .";
    for (std::size_t i = 0; i < 64; ++i) link[32 + i / 4 * 8 + i % 4] = i < text.size() ? text[i] : ' ';
    write(name, link);
  }

  std::string table_;
};

constexpr std::size_t first_record = 512;  // behind the header page, in words

TEST_F(verify_test, a_whole_table_is_whole) { expect(0, "t.ovt: whole, 600 rows\n"); }

TEST_F(verify_test, several_tables_are_told_one_by_one) {
  round_trip("A\n1\n");
  EXPECT_EQ(run_quietly({"verify", "t.ovt", "t.ovt"}), "t.ovt: whole, 1 row\nt.ovt: whole, 1 row\n");
}

TEST_F(verify_test, a_file_that_was_cut_off_lacks_rows) {
  write("t.ovt", table_.substr(0, 3 * 4096));
  expect(1,
         "t.ovt: not whole, 508 rows\n"
         "  t.ovt: the file ends behind row 508; its header promises 600\n");
}

TEST_F(verify_test, a_file_that_was_cut_within_its_last_page_lacks_rows) {
  write("t.ovt", table_.substr(0, 3 * 4096 + 50 * 16 + 15));
  expect(1,
         "t.ovt: not whole, 558 rows\n"
         "  t.ovt: the file ends behind row 558; its header promises 600\n");
  EXPECT_EQ(run({"verify", "t.ovt", "--salvage", "saved.ovt"}).status, 1);
  EXPECT_EQ(run_quietly({"verify", "saved.ovt"}), "saved.ovt: whole, 558 rows\n");
  expect_failure({"sort", "t.ovt", "--by", "A", "--descending"},
                 "t.ovt: the file ends behind row 558; its header promises 600");
}

TEST_F(verify_test, rows_of_a_page_in_which_the_file_ends_are_read) {
  for (const std::size_t cut : {4911U, 8208U, 12248U}) {  // within the first and the second page of rows
    SCOPED_TRACE(cut);
    write("t.ovt", table_.substr(0, cut));
    const std::string rows = std::to_string((cut / 4096 - 1) * 254 + cut % 4096 / 16);
    expect(1, "t.ovt: not whole, " + rows + " rows\n  t.ovt: the file ends behind row " + rows +
                  "; its header promises 600\n");
    const ovtest::process_result end = run({"verify", "t.ovt", "--salvage", "saved.ovt"});
    EXPECT_EQ(end.error, "ovfile: " + rows + " of 600 rows went to saved.ovt; of t.ovt these are lost: " +
                             std::to_string(std::stoi(rows) + 1) + "-600\n");
    EXPECT_EQ(run_quietly({"verify", "saved.ovt"}), "saved.ovt: whole, " + rows + " rows\n");
    EXPECT_EQ(run_quietly({"head", "saved.ovt", "-n", "1", "--from", rows}),
              std::string(rows.size() - 1, ' ') + "A  B\n" + rows + "  ab\n");
  }
}

TEST_F(verify_test, faults_in_a_page_in_which_the_file_ends_are_told_by_row) {
  const std::uint64_t none = 0x7FF8000000000000;
  std::memcpy(table_.data() + 2 * 4096 + 4 * 16, &none, 8);
  write("t.ovt", table_.substr(0, 2 * 4096 + 10 * 16));
  expect(1,
         "t.ovt: not whole, 264 rows\n"
         "  t.ovt: the file ends behind row 264; its header promises 600\n"
         "  t.ovt, row 259, column A: the number is no number\n");
}

TEST_F(verify_test, a_page_in_which_a_file_of_single_precision_ends_is_read) {
  std::string csv = "A,B\n";
  for (int i = 1; i <= 600; ++i) csv += std::to_string(i) + ",ab\n";
  write("in.csv", csv);
  run_quietly({"import", "in.csv", "t.ovt", "--single"});
  const std::string table = read("t.ovt");  // pages of 254 records of 8 bytes
  write("t.ovt", table.substr(0, 2048 + 100 * 8 + 3));
  EXPECT_EQ(run({"verify", "t.ovt", "--salvage", "saved.ovt"}).status, 1);
  EXPECT_EQ(run_quietly({"verify", "saved.ovt"}), "saved.ovt: whole, 100 rows\n");
  EXPECT_EQ(run_quietly({"head", "saved.ovt", "-n", "1", "--from", "100"}), "  A  B\n100  ab\n");
}

TEST_F(verify_test, a_table_without_a_mark_is_read_as_far_as_the_library_does) {
  run_quietly({"import", "in.csv", "t.ovt", "--single"});
  std::string table = read("t.ovt");
  std::memset(table.data() + 24 * 4, 0, 4);
  write("t.ovt", table.substr(0, 2048 + 2048 + 100 * 8));
  expect(1,
         "t.ovt: not whole, 254 rows\n"
         "  note: t.ovt: it has no table's mark\n"
         "  t.ovt: the file ends behind row 254; its header promises 600\n");
}

TEST_F(verify_test, more_rows_in_a_page_than_fit_are_told) {
  put(27, 255);
  const ovtest::process_result end = run({"verify", "t.ovt"});
  EXPECT_EQ(end.status, 1);
  EXPECT_NE(end.output.find("  t.ovt: the header counts 255 records in the last page, of which 254 fit\n"),
            end.output.npos)
      << end.output;
}

TEST_F(verify_test, a_last_page_that_ends_with_its_rows_is_whole) {
  write("t.ovt", table_.substr(0, 3 * 4096 + 92 * 16));
  expect(0, "t.ovt: whole, 600 rows\n");
}

TEST_F(verify_test, many_faults_of_a_kind_are_counted) {
  const std::uint64_t none = 0x7FF8000000000000;
  for (std::size_t row = 0; row < 200; ++row)
    std::memcpy(table_.data() + (first_record + 2 * row) * 8, &none, 8);
  write("t.ovt", table_);
  const ovtest::process_result end = run({"verify", "t.ovt"});
  EXPECT_EQ(end.status, 1);
  EXPECT_EQ(std::count(end.output.begin(), end.output.end(), '\n'), 52);
  EXPECT_TRUE(end.output.ends_with("\n  and 150 more of rows\n")) << end.output;
}

TEST_F(verify_test, a_header_that_counts_no_pages_is_told) {
  put(26, 0);
  const ovtest::process_result end = run({"verify", "t.ovt"});
  EXPECT_NE(end.output.find("12288 bytes follow the last page that the header counts"), end.output.npos)
      << end.output;
}

TEST_F(verify_test, a_table_that_cannot_be_read_hides_no_others) {
  write("t.ovt", table_.substr(0, 3 * 4096));
  const ovtest::process_result end = run({"verify", "t.ovt", "missing.ovt", "t.ovt"});
  EXPECT_EQ(end.status, 2);
  EXPECT_NE(end.error.find("missing.ovt"), end.error.npos);
  const std::string cut = "t.ovt: not whole, 508 rows\n";
  EXPECT_TRUE(end.output.starts_with(cut));
  EXPECT_NE(end.output.find(cut, 1), end.output.npos) << end.output;
}

TEST_F(verify_test, a_number_that_is_none_is_told_by_row) {
  const std::uint64_t none = 0x7FF8000000000000;
  std::memcpy(table_.data() + (first_record + 2 * 4) * 8, &none, 8);
  write("t.ovt", table_);
  expect(1,
         "t.ovt: not whole, 600 rows\n"
         "  t.ovt, row 5, column A: the number is no number\n");
}

TEST_F(verify_test, a_text_outside_the_code_page_is_told_by_row) {
  table_[(first_record + 2 * 4 + 1) * 8] = '\x81';
  write("t.ovt", table_);
  expect(0,
         "t.ovt: whole, 600 rows\n"
         "  note: t.ovt, row 5, column B: the text has bytes outside the code page\n");
}

TEST_F(verify_test, a_file_that_ends_within_its_header_is_not_whole) {
  for (const std::size_t bytes : {300U, 2000U}) {
    write("t.ovt", table_.substr(0, bytes));
    expect(1, "t.ovt: not whole, 0 rows\n  t.ovt: the file ends within the header\n");
  }
}

TEST_F(verify_test, more_entries_than_a_table_has_are_told) {
  put(25, 300);
  const ovtest::process_result end = run({"verify", "t.ovt"});
  EXPECT_EQ(end.status, 1);
  EXPECT_NE(end.output.find("  t.ovt: the header's number of entries is more than a table has: 300\n"),
            end.output.npos)
      << end.output;
}

TEST_F(verify_test, counts_that_are_none_are_told) {
  put(27, 1.5);
  EXPECT_NE(run({"verify", "t.ovt"})
                .output.find("  t.ovt: the header's number of records in the last page is no count: 1.5\n"),
            std::string::npos);
}

TEST_F(verify_test, a_number_without_end_is_told) {
  const double endless = -std::numeric_limits<double>::infinity();
  std::memcpy(table_.data() + (first_record + 2 * 4) * 8, &endless, 8);
  write("t.ovt", table_);
  expect(1, "t.ovt: not whole, 600 rows\n  t.ovt, row 5, column A: the number is infinite\n");
}

TEST_F(verify_test, what_a_link_leads_to_is_looked_at) {
  write("t.ovt", table_.substr(0, 2 * 4096 + 100 * 16));
  std::filesystem::create_directory(folder() / "links");
  write("links/u.ovt", read("t.ovt"));
  for (const std::string target : {"t.ovt", "links/u.ovt"}) {
    SCOPED_TRACE(target);
    make_link("link.ovt", target);
    const ovtest::process_result end = run({"verify", "link.ovt", "--salvage", "saved.ovt"});
    EXPECT_EQ(end.status, 1);
    EXPECT_NE(end.output.find("link.ovt: not whole, 354 rows\n"), end.output.npos) << end.output;
    EXPECT_NE(end.output.find("  note: link.ovt: it is a link to "), end.output.npos);
    EXPECT_NE(end.output.find("  link.ovt: the file ends behind row 354; its header promises 600\n"),
              end.output.npos);
    EXPECT_EQ(run_quietly({"head", "saved.ovt", "-n", "2", "--from", "353"}), "  A  B\n353  ab\n354  ab\n");
  }
}

TEST_F(verify_test, faults_in_the_header_of_a_links_target_are_told) {
  write("t.ovt", table_ + std::string(100, '\0'));
  make_link("link.ovt", "t.ovt");
  const ovtest::process_result end = run({"verify", "link.ovt"});
  EXPECT_EQ(end.status, 0);
  EXPECT_NE(end.output.find("100 bytes follow the last page that the header counts"), end.output.npos);
}

TEST_F(verify_test, a_table_whose_description_begins_like_a_links_is_saved_all_the_same) {
  std::memcpy(table_.data() + 4 * 8, "LINK", 4);
  write("t.ovt", table_.substr(0, 2 * 4096 + 100 * 16));
  make_link("link.ovt", "t.ovt");
  run({"verify", "link.ovt", "--salvage", "saved.ovt"});
  EXPECT_EQ(run_quietly({"head", "saved.ovt", "-n", "1", "--from", "354"}), "  A  B\n354  ab\n");
}

TEST_F(verify_test, what_is_saved_goes_to_no_other_file) {
  write("x.csv", "A\n1\n");
  expect_wrong_usage({"verify", "t.ovt", "--salvage", "x.csv"},
                     "x.csv: --salvage makes a table, and the name is another file's");
  EXPECT_EQ(read("x.csv"), "A\n1\n");
  for (const std::string name : {"x.parquet", "x.json", "x.XLSX", "x.csv.gz"}) {
    expect_wrong_usage({"verify", "t.ovt", "--salvage", name},
                       name + ": --salvage makes a table, and the name is another file's");
    EXPECT_FALSE(std::filesystem::exists(folder() / name));
  }
}

TEST_F(verify_test, places_that_two_columns_share_are_told) {
  put(28 + 7 + 3, 1);  // of the second column's word
  expect(1,
         "t.ovt: not whole, 0 rows\n"
         "  t.ovt, column B: its place 1 is another column's too\n"
         "  t.ovt: it cannot be opened: t.ovt: Not a valid orvexa table\n");
}

TEST_F(verify_test, the_order_of_words_is_looked_at) {
  put(28 + 4, 3);
  expect(0,
         "t.ovt: whole, 600 rows\n"
         "  note: t.ovt, column A: the header has word 3 of it where word 1 belongs\n");
}

TEST_F(verify_test, bytes_behind_the_last_page_are_no_harm) {
  write("t.ovt", table_ + std::string(100, '\0'));
  expect(0,
         "t.ovt: whole, 600 rows\n"
         "  note: t.ovt: 100 bytes follow the last page that the header counts\n");
}

TEST_F(verify_test, what_was_left_beside_it_is_told) {
  write(".NEW0123456789.tmp", "x");
  for (const char* name : {".NEWS.md", ".NEWcafe", "NEWface.tmp"}) write(name, "x");
  expect(0,
         "t.ovt: whole, 600 rows\n"
         "  note: t.ovt: beside it lies .NEW0123456789.tmp, of work that was cut off\n");
}

TEST_F(verify_test, what_is_no_table_is_not_whole) {
  write("t.ovt", "text");
  expect(1, "t.ovt: not whole, 0 rows\n  t.ovt: it has no table's mark\n");
}

TEST_F(verify_test, what_cannot_be_read_is_a_failure) {
  const ovtest::process_result end = run({"verify", "missing.ovt"});
  EXPECT_EQ(end.status, 2);
  EXPECT_NE(end.error.find("missing.ovt"), end.error.npos);
}

TEST_F(verify_test, json_has_the_same) {
  write("t.ovt", table_.substr(0, 3 * 4096));
  const ovtest::process_result end = run({"verify", "t.ovt", "--json"});
  EXPECT_EQ(end.status, 1);
  const auto found = nlohmann::json::parse(end.output);
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0]["file"], "t.ovt");
  EXPECT_EQ(found[0]["whole"], false);
  EXPECT_EQ(found[0]["rows"], 600);
  EXPECT_EQ(found[0]["rows_in_file"], 508);
  EXPECT_EQ(found[0]["findings"].size(), 1U);
}

TEST_F(verify_test, what_can_be_read_is_saved) {
  const std::uint64_t none = 0x7FF8000000000000;
  std::memcpy(table_.data() + (first_record + 2 * 4) * 8, &none, 8);
  write("t.ovt", table_.substr(0, 3 * 4096));
  const ovtest::process_result end = run({"verify", "t.ovt", "--salvage", "saved.ovt"});
  EXPECT_EQ(end.status, 1);
  EXPECT_EQ(end.error,
            "ovfile: 508 of 600 rows went to saved.ovt; of t.ovt these are lost: 509-600; "
            "numbers that were none became absent in row 5\n");
  EXPECT_EQ(run_quietly({"verify", "saved.ovt"}), "saved.ovt: whole, 508 rows\n");
  EXPECT_EQ(run_quietly({"head", "saved.ovt", "-n", "2", "--from", "4"}), "A  B\n4  ab\n   ab\n");
}

TEST_F(verify_test, rows_in_which_numbers_became_absent_are_told) {
  const std::uint64_t none = 0x7FF8000000000000;
  for (std::size_t row = 0; row < 61; ++row) {
    if (row != 59) std::memcpy(table_.data() + (first_record + 2 * row) * 8, &none, 8);
  }
  write("t.ovt", table_);
  EXPECT_EQ(
      run({"verify", "t.ovt", "--salvage", "saved.ovt"}).error,
      "ovfile: 600 of 600 rows went to saved.ovt; numbers that were none became absent in rows 1-59, 61\n");
}

/// A table of 3 rows: a number, and a text of two words of which the first stands in the header alone.
std::string partly_stored_table(std::string table) {
  const auto put = [&](std::size_t word, double number) {
    std::memcpy(table.data() + word * 8, &number, sizeof number);
  };
  const std::size_t first_word = 28 + 7;
  const std::size_t second_word = first_word + 7;
  put(first_word + 3, 0);
  std::memcpy(table.data() + (first_word + 6) * 8, "ever", 4);
  put(second_word + 3, 2);
  // Rows of two words stand where some of three stood.
  for (std::size_t row = 0; row < 3; ++row) {
    put(first_record + 2 * row, static_cast<double>(row + 1));
    std::memcpy(table.data() + (first_record + 2 * row + 1) * 8, row == 1 ? "that" : "here", 4);
  }
  return table;
}

TEST_F(verify_test, a_text_that_the_header_has_in_part_is_told_and_saved_whole) {
  round_trip("N,MIX\n1,everhere\n2,everthat\n3,everhere\n");
  write("t.ovt", partly_stored_table(read("t.ovt")));
  const std::string rows = "N,MIX\n1,everhere\n2,everthat\n3,everhere\n";
  ASSERT_EQ(run_quietly({"export", "t.ovt"}), rows);
  make_link("link.ovt", "t.ovt");
  for (const std::string name : {"t.ovt", "link.ovt"}) {
    SCOPED_TRACE(name);
    const ovtest::process_result end = run({"verify", name, "--salvage", "saved.ovt"});
    EXPECT_EQ(end.status, 0);
    EXPECT_TRUE(end.output.starts_with(name + ": whole, 3 rows\n")) << end.output;
    EXPECT_NE(
        end.output.find("  note: " + name +
                        ", column MIX: its first word stands in the header alone, others in the rows\n"),
        end.output.npos)
        << end.output;
    EXPECT_EQ(run_quietly({"export", "saved.ovt"}), rows);
    EXPECT_EQ(run_quietly({"verify", "saved.ovt"}), "saved.ovt: whole, 3 rows\n");
  }
}

TEST_F(verify_test, a_table_is_not_saved_into_itself) {
  expect_wrong_usage({"verify", "t.ovt", "--salvage", "./t.ovt"},
                     "the table and what is saved of it are one file: ./t.ovt");
}

TEST_F(verify_test, names_that_are_not_allowed_are_changed_in_what_is_saved) {
  table_[(28 + 7) * 8] = 'A';
  write("t.ovt", table_);
  expect(0,
         "t.ovt: whole, 600 rows\n"
         "  note: t.ovt, column A: another column has its name\n");
  const ovtest::process_result end = run({"verify", "t.ovt", "--salvage", "saved.ovt"});
  EXPECT_EQ(end.status, 0);
  EXPECT_NE(end.error.find("column 2 \"A\""), end.error.npos) << end.error;
  EXPECT_EQ(run_quietly({"head", "saved.ovt", "-n", "1"}), "A  A_2\n1  ab\n");
}

}  // namespace
