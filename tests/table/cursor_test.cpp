#include "table_host.h"

namespace {

using ovtest::call;
using ovtest::reported;
using ovtest::TableHost;
using ovtest::with_failing_code;

constexpr const char* next_refused = "GetNextRow failed, current row is not valid";
constexpr const char* previous_refused = "MovePrevious failed, current row is not valid";
constexpr const char* current_refused = "GetCurrentRow failed, current row is not valid";

class Cursor : public TableHost {
 protected:
  void open_rows(int rows) {
    make_rows(rows);
    ASSERT_EQ(open(), S_OK);
  }
};

TEST_F(Cursor, AnEmptyTableIsAtBothEnds) {
  open_rows(0);
  EXPECT_EQ(at_end(), 1);  // 1 and not VARIANT_TRUE
  EXPECT_EQ(at_beginning(), 1);
  EXPECT_REPORT(table_->GetNextRow(), next_refused);
  EXPECT_REPORT(table_->GetPreviousRow(), previous_refused);
  EXPECT_EQ(table_->GetFirstRow(), S_FALSE);
  EXPECT_EQ(table_->GetLastRow(), S_OK);
  EXPECT_EQ(at_end(), 1);
}

TEST_F(Cursor, StandsOnTheFirstRowAfterOpening) {
  open_rows(3);
  EXPECT_EQ(row(), 1);
  EXPECT_EQ(at_end(), 0);
  EXPECT_EQ(at_beginning(), 0);
}

TEST_F(Cursor, RunsOffTheEndOnce) {
  open_rows(2);
  EXPECT_EQ(table_->GetNextRow(), S_OK);
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(table_->GetNextRow(), S_FALSE);
  EXPECT_EQ(reported(), "(none)");
  EXPECT_EQ(at_end(), 1);
  LONG current = 5;
  EXPECT_REPORT(table_->GetCurrentRow(&current), current_refused);
  EXPECT_EQ(current, 0);
  EXPECT_REPORT(table_->GetNextRow(), next_refused);
  EXPECT_REPORT(table_->GetPreviousRow(), previous_refused);
  EXPECT_EQ(table_->GetLastRow(), S_OK);
  EXPECT_EQ(row(), 2);
  EXPECT_EQ(depth(), 2);
}

TEST_F(Cursor, RunsOffTheBeginning) {
  open_rows(2);
  EXPECT_EQ(table_->GetPreviousRow(), S_FALSE);
  EXPECT_EQ(at_beginning(), 1);
  EXPECT_EQ(at_end(), 0);
  EXPECT_REPORT(table_->GetNextRow(), next_refused);
  EXPECT_EQ(table_->GetFirstRow(), S_OK);
  EXPECT_EQ(row(), 1);
  EXPECT_EQ(at_beginning(), 0);
}

TEST_F(Cursor, GoesToARowByItsNumber) {
  open_rows(3);
  EXPECT_EQ(table_->GetRowAt(3), S_OK);
  EXPECT_EQ(depth(), 3);
  EXPECT_EQ(table_->GetPreviousRow(), S_OK);
  EXPECT_EQ(depth(), 2);
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(table_->GetRowAt(0), S_FALSE);
  EXPECT_EQ(at_beginning(), 1);
  EXPECT_EQ(at_end(), 0);
  EXPECT_EQ(table_->GetRowAt(4), S_FALSE);
  EXPECT_EQ(at_beginning(), 0);
  EXPECT_EQ(at_end(), 1);
  EXPECT_EQ(table_->GetRowAt(-7), S_FALSE);
  EXPECT_EQ(reported(), "(none)");
  EXPECT_EQ(table_->GetRowAt(1), S_OK);
  EXPECT_EQ(at_beginning(), 0);
  EXPECT_EQ(row(), 1);
}

TEST_F(Cursor, WithoutATableTheMovesDoNothing) {
  EXPECT_EQ(table_->GetFirstRow(), S_OK);
  EXPECT_EQ(table_->GetLastRow(), S_OK);
  EXPECT_EQ(table_->GetNextRow(), S_OK);
  EXPECT_EQ(table_->GetPreviousRow(), S_OK);
  EXPECT_EQ(table_->GetRowAt(1), S_OK);
}

TEST_F(Cursor, WithoutATableTheRestFailsWithoutAReport) {
  SetErrorInfo(0, nullptr);
  LONG number = 5;
  VARIANT_BOOL flag = 5;
  double value = 5;
  EXPECT_EQ(table_->GetRowCount(&number), E_FAIL);
  EXPECT_EQ(number, 0);
  EXPECT_EQ(table_->GetCurrentRow(&number), E_FAIL);
  EXPECT_EQ(table_->get_EOF(&flag), E_FAIL);
  EXPECT_EQ(flag, 0);
  EXPECT_EQ(table_->get_BOF(&flag), E_FAIL);
  EXPECT_EQ(table_->AddRow(), E_FAIL);
  EXPECT_EQ(table_->FlushChanges(), E_FAIL);
  EXPECT_EQ(table_->GetColumnAsDouble(1, &value), E_FAIL);
  EXPECT_EQ(value, 0);
  EXPECT_EQ(table_->SetColumnDouble(1, 1), E_FAIL);
  EXPECT_EQ(reported(), "(none)");
}

TEST_F(Cursor, ADiskErrorNeverLooksLikeTheEnd) {
  make_rows(400, false);
  ovtest::failing_files failing;
  ASSERT_EQ(open(), S_OK);
  ASSERT_EQ(table_->GetRowAt(169), S_OK);
  failing.fail_nth(call::read, 1);
  EXPECT_REPORT(table_->GetNextRow(), with_failing_code("OvFile Error: cache failed to read file."));
  EXPECT_EQ(at_end(), 0);
  EXPECT_EQ(row(), 169);
  EXPECT_EQ(table_->GetNextRow(), S_OK);
  EXPECT_EQ(depth(), 170);
}

TEST_F(Cursor, ARowThatCannotBeReachedIsReportedAndTheStatusStays) {
  make_rows(400, false);
  ovtest::failing_files failing;
  ASSERT_EQ(open(), S_OK);
  failing.fail_nth(call::read, 1);
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(table_->GetRowAt(300), S_OK);
  EXPECT_EQ(reported(), with_failing_code("OvFile Error: cache failed to read file."));
}

TEST_F(Cursor, TheLastAndThePreviousRowReportWhatTheyCannotRead) {
  make_rows(400, false);
  ovtest::failing_files failing;
  const std::string words = with_failing_code("OvFile Error: cache failed to read file.");
  ASSERT_EQ(open(), S_OK);
  failing.fail_nth(call::read, 1);
  EXPECT_REPORT(table_->GetLastRow(), words);
  ASSERT_EQ(table_->GetRowAt(170), S_OK);
  failing.fail_nth(call::read, 1);
  EXPECT_REPORT(table_->GetPreviousRow(), words);
}

TEST_F(Cursor, OpeningAnotherTableForgetsWhereTheCursorRanOff) {
  make_rows(1);
  make_rows(1, true, "other.ovt");
  ASSERT_EQ(open(), S_OK);
  ASSERT_EQ(table_->GetNextRow(), S_FALSE);
  ovtest::failing_files failing;
  failing.decide = [reads = 0](call kind, const ovf::wide&) mutable {
    return kind == call::read && ++reads == 4 ? ovtest::fate::fails : ovtest::fate::works;
  };
  ASSERT_EQ(open(0, "other.ovt"), S_OK);
  EXPECT_EQ(at_end(), 0);
}

TEST_F(Cursor, AddingARowMovesThere) {
  open_rows(2);
  ASSERT_EQ(table_->GetRowAt(0), S_FALSE);
  EXPECT_EQ(table_->AddRow(), S_OK);
  EXPECT_EQ(row(), 3);
  EXPECT_EQ(depth(), -1);
  EXPECT_EQ(column_text(1), "none    ");
  LONG rows = 0;
  EXPECT_EQ(table_->GetRowCount(&rows), S_OK);
  EXPECT_EQ(rows, 3);
}

TEST_F(Cursor, AddingToATableOpenedReadOnlyIsRefused) {
  make_rows(2);
  ASSERT_EQ(open(1), S_OK);
  EXPECT_REPORT(table_->AddRow(), "AddRow failed, current row is not valid");
}

TEST_F(Cursor, FlushedChangesAreInTheFile) {
  open_rows(2);
  ASSERT_EQ(table_->SetColumnDouble(2, 9), S_OK);
  EXPECT_EQ(table_->FlushChanges(), S_OK);
  auto other = ovfile::create_table();
  ASSERT_EQ(other->Open(ovtest::text_of(path()).get(), 1), S_OK);
  double value = 0;
  EXPECT_EQ(other->GetColumnAsDouble(2, &value), S_OK);
  EXPECT_EQ(value, 9);
}

TEST_F(Cursor, RowsAreNeverDeletedHere) {
  open_rows(2);
  EXPECT_EQ(table_->DeleteRow(1), E_NOTIMPL);
  EXPECT_EQ(table_->DeleteRow(-5), E_NOTIMPL);
}

}  // namespace
