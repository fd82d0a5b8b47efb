// Why a statement failed, where several threads worked at it.
#include <gtest/gtest.h>

#include <string>

#include "command/failure.h"
#include "command/sql/scan_failure.h"
#include "command/sql/sql_failure.h"

namespace {

constexpr const char* stopped = "INTERRUPT Error: Interrupted!";

std::string told(const std::string& words, const command::scan_failure& scans = {}) {
  try {
    command::throw_sql_failure(words, 0, scans);
  } catch (const command::failure& failure) {
    return failure.what();
  }
}

TEST(sql_failure_words, the_first_table_that_cannot_be_read_is_told_and_not_the_stop_of_the_others) {
  command::scan_failure scans;
  scans.note(command::own_sql_words("t.ovt: the table was changed"));
  scans.note(command::own_sql_words("t.ovt: it is gone"));
  EXPECT_EQ(told(stopped, scans), "t.ovt: the table was changed");
  scans.forget();
  scans.note(command::own_sql_words("u.ovt: it is gone"));
  EXPECT_EQ(told(stopped, scans), "u.ovt: it is gone");
}

TEST(sql_failure_words, a_reason_of_the_librarys_own_stands) {
  command::scan_failure scans;
  scans.note(command::own_sql_words("t.ovt: it is gone"));
  EXPECT_EQ(told("Conversion Error: no number", scans), "Conversion Error: no number");
}

TEST(sql_failure_words, a_stop_that_nobody_asked_for_tells_how_to_learn_why) {
  EXPECT_EQ(told(stopped), "the statement failed, and DuckDB does not tell why; with --threads 1 it does");
}

TEST(sql_failure_words, the_reason_is_told_also_where_rows_were_asked_for_in_vain) {
  const std::string in_vain =
      "Invalid Input Error: Attempting to execute an unsuccessful or closed pending query result\nError: ";
  EXPECT_EQ(told(in_vain + "Invalid Input Error: no 1"), "Invalid Input Error: no 1");
  command::scan_failure scans;
  scans.note(command::own_sql_words("t.ovt: it is gone"));
  EXPECT_EQ(told(in_vain + stopped, scans), "t.ovt: it is gone");
}

}  // namespace
