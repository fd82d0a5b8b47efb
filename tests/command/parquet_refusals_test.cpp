// Parquet of which no table can be made: the reason is told, and nothing changes.
#include "command/parquet_fixture.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;
using names = std::vector<std::string>;

class parquet_refusals_test : public ovtest::parquet_test {
 protected:
  void SetUp() override {
    parquet_test::SetUp();
    write("t.ovt", "old");
  }

  /// Expects the refusal; the message begins with these words.
  void expect_refused(const std::string& name, const std::string& words) const {
    const names before = files();
    const ovtest::process_result result = run({"import", name, "t.ovt"});
    EXPECT_EQ(result.status, 1) << name;
    EXPECT_THAT(result.error, StartsWith("ovfile: " + words));
    EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
    EXPECT_EQ(read("t.ovt"), "old");
    EXPECT_EQ(files(), before);
  }

  void expect_query_refused(const std::string& query, const std::string& words) const {
    make_parquet("in.parquet", query);
    expect_refused("in.parquet", words);
  }
};

TEST_F(parquet_refusals_test, what_is_not_there_is_told) {
  expect_refused("in.parquet", "cannot open in.parquet: there is no such file\n");
  std::filesystem::create_directory(folder() / "in");
  expect_refused("in", "in has no Parquet files in it\n");
  write("in/a.csv", "A\n1\n");
  expect_refused("in", "in has no Parquet files in it\n");
}

TEST_F(parquet_refusals_test, what_is_no_parquet_is_told) {
  write("empty.parquet", "");
  write("csv.parquet", "A,B,C,D\n1,2,3,4\n5,6,7,8\n");
  write("marks.parquet", "PAR1PAR1PAR1");
  for (const char* name : {"empty.parquet", "csv.parquet", "marks.parquet"}) {
    expect_refused(name, std::string("cannot read ") + name + ": ");
  }
  std::filesystem::create_directory(folder() / "in");
  write("in/csv.parquet", "A,B,C,D\n1,2,3,4\n5,6,7,8\n");
  expect_refused("in", "cannot read in: ");
}

TEST_F(parquet_refusals_test, a_file_that_was_cut_off_is_told) {
  make_parquet("whole.parquet", "select range as A, hash(range) % 1000 as B from range(20000)");
  const std::string whole = read("whole.parquet");
  for (std::size_t part = 0; part < 8; ++part) {
    const std::string cut = whole.substr(0, whole.size() * part / 8);
    write("cut.parquet", cut);
    expect_refused("cut.parquet", "cannot read cut.parquet: ");
    write("cut.parquet", cut + whole.substr(whole.size() - 8));
    expect_refused("cut.parquet", "cannot read cut.parquet: ");
  }
}

TEST_F(parquet_refusals_test, damaged_bytes_end_in_a_table_or_a_message) {
  make_parquet("whole.parquet", "select range as A, 'text ' || range as B from range(5000)");
  const std::string whole = read("whole.parquet");
  for (std::size_t part = 0; part < 16; ++part) {
    std::string damaged = whole;
    for (std::size_t i = 0; i < 16; ++i) damaged[(whole.size() - 16) * part / 15 + i] ^= 0x5a;
    write("damaged.parquet", damaged);
    const ovtest::process_result result = run({"import", "damaged.parquet", "new.ovt"});
    EXPECT_EQ(result.status, result.error.empty() ? 0 : 1) << result.error;
    if (result.status == 0) run_quietly({"info", "new.ovt"});
    std::filesystem::remove(folder() / "new.ovt");
    EXPECT_EQ(files(), (names{"damaged.parquet", "t.ovt", "whole.parquet"}));
  }
}

TEST_F(parquet_refusals_test, a_character_that_no_table_holds_is_told_with_its_place) {
  expect_query_refused("select case when range = 5000 then 'x日' else 'x' end B from range(6000)",
                       "cannot write t.ovt: Append failed, column B, row 5001: the text has a character "
                       "outside the ANSI code page\n");
}

TEST_F(parquet_refusals_test, a_text_that_no_table_holds_is_told) {
  expect_query_refused("select repeat('x', 1025) as B",
                       "t.ovt: column B has a text of 1025 characters; a text has at most 1024\n");
}

TEST_F(parquet_refusals_test, more_columns_than_a_table_holds_are_told) {
  std::string columns = "1 c1";
  for (int i = 2; i <= 257; ++i) columns += ", 1 c" + std::to_string(i);
  expect_query_refused("select " + columns,
                       "t.ovt: the table would need 257 words; a double-precision one holds 256 (a number "
                       "takes one, a text one for every 4 characters)\n");
}

TEST_F(parquet_refusals_test, a_number_beyond_single_precision_is_told_with_its_place) {
  make_parquet("in.parquet", "select 1e300::double as A");
  expect_failure(
      {"import", "in.parquet", "t.ovt", "--single"},
      "cannot write t.ovt: Append failed, column A, row 1: the number is beyond what the column can "
      "hold");
  EXPECT_EQ(read("t.ovt"), "old");
}

TEST_F(parquet_refusals_test, names_that_go_another_way_are_wrong_usage) {
  make_parquet("in.parquet", "select 1 a");
  std::filesystem::create_directory(folder() / "in");
  expect_wrong_usage({"import", "in.parquet", "in.parquet"},
                     "the Parquet and the table are one file: in.parquet");
  expect_wrong_usage({"import", "in", "in"}, "the Parquet and the table are one file: in");
  expect_wrong_usage(
      {"import", "in.parquet", "out.parquet"},
      "out.parquet: import makes a table, and the name is a Parquet file's; nothing is written");
  write("a.csv", "A\n1\n");
  expect_wrong_usage({"import", "a.csv", "new.ovt", "--absent", "nan"},
                     "--memory, --threads and --absent are for Parquet");
  expect_failure({"import", "in.parquet", "in"}, "cannot write in: it is not a regular file");
}

}  // namespace
