// Small files whose headers promise two thousand million rows: how much a command takes comes from the file.
#include <cstring>

#include "command/command_test.h"
#include "support/sanitized.h"
#include "support/started_program_linux.h"

namespace {

class bounds_test : public ovtest::command_test {
 protected:
  static constexpr std::size_t most_bytes = 64 << 20;

  /// A table of three rows and one column, whose header promises 3,937,008 pages of 508 rows.
  void SetUp() override {
    command_test::SetUp();
    round_trip("A\n1\n2\n3\n");
    std::string table = read("t.ovt");
    const double words[] = {3'937'009, 508};  // pages, and rows in the last one
    std::memcpy(table.data() + std::size_t{26} * 8, words, sizeof words);
    write("t.ovt", table);
    before_ = table;
  }

  /// Expects a failure with these words, in little memory, and the table as it was.
  void expect_refusal(std::vector<std::string> arguments, int status, const std::string& words) {
    SCOPED_TRACE(arguments[0]);
    arguments.insert(arguments.begin(), program());
    ovtest::started_program started(arguments, folder().path(), folder().path() / "error");
    const ovtest::ended_program end = started.wait();
    EXPECT_EQ(end.status >> 8, status);
    if (!ovtest::is_sanitized) {
      EXPECT_LT(end.most_bytes, most_bytes);
    }
    EXPECT_EQ(read("error"), "ovfile: " + words + "\n");
    EXPECT_TRUE(read("t.ovt") == before_);
  }

  std::string before_;
};

constexpr const char* cut_short = "t.ovt: the file ends behind row 508; its header promises 2000000064";

TEST_F(bounds_test, rows_are_not_deleted_from_what_is_not_there) {
  expect_refusal({"delete-rows", "t.ovt", "--rows", "1"}, 1, cut_short);
}

TEST_F(bounds_test, rows_are_not_matched_by_keys) {
  write("u.ovt", before_);
  expect_refusal({"diff", "t.ovt", "u.ovt", "--key", "A"}, 2, cut_short);
}

TEST_F(bounds_test, values_are_not_set_in_rows_that_are_not_there) {
  expect_refusal({"set", "t.ovt", "A=7", "--all"}, 1, cut_short);
}

TEST_F(bounds_test, columns_are_not_added_to_rows_that_are_not_there) {
  expect_refusal({"alter", "t.ovt", "--add", "B"}, 1, cut_short);
}

TEST_F(bounds_test, info_tells_where_the_file_ends) {
  const std::string words = run_quietly({"info", "t.ovt"});
  EXPECT_NE(words.find("cut off"), std::string::npos) << words;
  EXPECT_NE(words.find("behind row 508; the header promises more than the file holds"), std::string::npos);
}

}  // namespace
