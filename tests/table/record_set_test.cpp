#include "table_host.h"

namespace {

using ovtest::TableHost;
using ovtest::text_of;

class RecordSet : public TableHost {
 protected:
  ovfile::pointer<IOvTableADO> set_ = ovfile::create_record_set();

  HRESULT open_set(LONG read_only = 0, const char* name = "table.ovt") {
    return set_->Open(text_of(path(name)).get(), read_only);
  }
  void open_rows(int rows, bool is_double = true) {
    make_rows(rows, is_double);
    ASSERT_EQ(open_set(), S_OK);
  }
  LONG current() {
    LONG value = -99;
    EXPECT_EQ(set_->GetCurrentRow(&value), S_OK);
    return value;
  }
  LONG rows() {
    LONG value = -99;
    EXPECT_EQ(set_->GetRowCount(&value), S_OK);
    return value;
  }
  VARIANT_BOOL set_at_end() {
    VARIANT_BOOL value = 99;
    EXPECT_EQ(set_->get_EOF(&value), S_OK);
    return value;
  }
  VARIANT_BOOL set_at_beginning() {
    VARIANT_BOOL value = 99;
    EXPECT_EQ(set_->get_BOF(&value), S_OK);
    return value;
  }
  double number(LONG column) {
    ovfile::variant value;
    EXPECT_EQ(set_->GetColumn(column, value.out()), S_OK);
    return value.number();
  }
  HRESULT put(LONG column, double value) { return set_->SetColumn(column, ovfile::variant(value).get()); }
  static ovfile::text name(const char* text) { return text_of(std::string(text)); }
};

TEST_F(RecordSet, OpensOnItsFirstRow) {
  open_rows(3);
  EXPECT_EQ(current(), 1);
  EXPECT_EQ(rows(), 3);
  EXPECT_EQ(number(2), 1);
  EXPECT_EQ(set_at_end(), 0);
  EXPECT_EQ(set_at_beginning(), 0);
  ovfile::pointer<IOvSchema> schema;
  ASSERT_EQ(set_->get_Schema(schema.out()), S_OK);
  LONG count = 0;
  EXPECT_EQ(schema->get_FieldCount(&count), S_OK);
  EXPECT_EQ(count, 3);
}

TEST_F(RecordSet, AMissingFileIsReported) {
  EXPECT_REPORT(open_set(0, "none.ovt"), "Error: File does not exist.");
  EXPECT_EQ(open_set(0, "none.ovt"), E_FAIL);
  EXPECT_EQ(ovtest::reported_source(), "OvFile.OvTableADO.1");
}

TEST_F(RecordSet, WhatIsNoTableIsRefusedInTheWordsOfTheFormat) {
  ovtest::write_bytes(path("notes.txt"), ovtest::bytes(3000, ' '));
  EXPECT_REPORT(open_set(0, "notes.txt"), "Not a valid orvexa table");
}

TEST_F(RecordSet, AFolderFailsSilently) {
  std::filesystem::create_directory(path("folder"));
  EXPECT_REPORT(open_set(0, "folder"), "(none)");
}

TEST_F(RecordSet, FollowsALink) {
  make_rows(2, true, "target.ovt");
  auto schema = ovfile::create_schema();
  schema->put_Description(name("LINKtarget.ovt .").get());
  schema->AddNumericColumn(name("X").get(), 0, 0);
  ASSERT_EQ(create(schema, "link.ovt"), S_OK);
  ASSERT_EQ(table_->Close(), S_OK);
  ASSERT_EQ(open_set(0, "link.ovt"), S_OK);
  EXPECT_EQ(rows(), 2);
  ASSERT_EQ(set_->Close(), S_OK);
  std::filesystem::remove(path("target.ovt"));
  auto another = ovfile::create_record_set();
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(another->Open(text_of(path("link.ovt")).get(), 0), E_FAIL);
  EXPECT_EQ(ovtest::reported(), "Error: File does not exist.");
}

TEST_F(RecordSet, ReadOnlyDoesNotLatchTheSchema) {
  make_rows(1);
  ASSERT_EQ(open_set(1), S_OK);
  ovfile::pointer<IOvSchema> schema;
  ASSERT_EQ(set_->get_Schema(schema.out()), S_OK);
  VARIANT_BOOL latched = VARIANT_TRUE;
  EXPECT_EQ(schema->get_ReadOnly(&latched), S_OK);
  EXPECT_EQ(latched, VARIANT_FALSE);
}

TEST_F(RecordSet, TheFirstMoveOfAnEmptyTableSucceeds) {
  open_rows(0);
  EXPECT_EQ(set_->MoveFirst(), S_OK);
  EXPECT_EQ(set_at_end(), 1);
  EXPECT_EQ(set_at_beginning(), 1);
  EXPECT_REPORT(set_->MoveNext(), "Error: MoveNext failed, current row is not valid.");
  EXPECT_REPORT(set_->MovePrevious(), "Error: MovePrevious failed, current row is not valid.");
}

TEST_F(RecordSet, RunsOffTheEndOnce) {
  open_rows(2);
  EXPECT_EQ(set_->MoveNext(), S_OK);
  EXPECT_EQ(set_->MoveNext(), S_FALSE);
  EXPECT_EQ(set_at_end(), 1);
  EXPECT_REPORT(set_->MoveNext(), "Error: MoveNext failed, current row is not valid.");
  LONG row = 9;
  EXPECT_REPORT(set_->GetCurrentRow(&row), "Error: GetCurrentRow failed, current row is not valid");
  EXPECT_EQ(row, 0);
  EXPECT_EQ(set_->MoveLast(), S_OK);
  EXPECT_EQ(current(), 2);
  EXPECT_EQ(set_->MovePrevious(), S_OK);
  EXPECT_EQ(set_->MovePrevious(), S_FALSE);
  EXPECT_EQ(set_at_beginning(), 1);
  EXPECT_REPORT(set_->MovePrevious(), "Error: MovePrevious failed, current row is not valid.");
}

TEST_F(RecordSet, MovesToARow) {
  open_rows(3);
  EXPECT_EQ(set_->MoveTo(3), S_OK);
  EXPECT_EQ(number(2), 3);
  EXPECT_EQ(set_->MoveTo(0), S_FALSE);
  EXPECT_EQ(set_at_beginning(), 1);
  EXPECT_EQ(set_->MoveTo(4), S_FALSE);
  EXPECT_EQ(set_at_end(), 1);
}

TEST_F(RecordSet, ColumnsHaveItsOwnWords) {
  open_rows(1);
  EXPECT_EQ(put(2, 7), S_OK);
  EXPECT_EQ(number(2), 7);
  EXPECT_EQ(set_->SetColumn(1, ovfile::variant(name("123456789")).get()), S_FALSE);
  ASSERT_EQ(set_->MoveTo(0), S_FALSE);
  ovfile::variant value;
  EXPECT_REPORT(set_->GetColumn(2, value.out()), "Error: GetColumn failed, current row is not valid.");
  EXPECT_REPORT(put(2, 1), "Error: SetColumn failed, current row is not valid");
  EXPECT_EQ(set_->GetColumn(2, nullptr), E_POINTER);
}

TEST_F(RecordSet, AReadOnlyTableHasItsOwnWords) {
  make_rows(1);
  ASSERT_EQ(open_set(1), S_OK);
  EXPECT_REPORT(put(2, 1), "Error: SetColumn failed, file is open in read-only mode.");
  EXPECT_REPORT(set_->AddRow(), "Error: AddRow failed, file is open in read-only mode.");
  EXPECT_REPORT(set_->Update(), "Error: Update failed, file open in read-only mode.");
}

TEST_F(RecordSet, ColumnsHaveNames) {
  open_rows(1);
  ovfile::variant value;
  EXPECT_EQ(set_->GetNamedColumn(name("DENSITY").get(), value.out()), S_OK);
  EXPECT_EQ(value.number(), 2.75);
  EXPECT_EQ(set_->SetNamedColumn(name("DEPTH").get(), ovfile::variant(12.5).get()), S_OK);
  EXPECT_EQ(number(2), 12.5);
  EXPECT_REPORT(set_->GetNamedColumn(name("depth").get(), value.out()),
                "Error: GettNamedColumn failed, no column with given name.");
  EXPECT_EQ(value.type(), VT_EMPTY);
  EXPECT_REPORT(set_->SetNamedColumn(name("depth").get(), ovfile::variant(1.0).get()),
                "Error: SetNamedColumn failed, no column with given name.");
  EXPECT_EQ(set_->GetNamedColumn(name("DEPTH").get(), nullptr), E_POINTER);
}

TEST_F(RecordSet, AnUpdateBringsChangesToTheFileAndKeepsTheRow) {
  open_rows(3);
  ASSERT_EQ(set_->MoveTo(2), S_OK);
  ASSERT_EQ(put(2, 22), S_OK);
  EXPECT_EQ(set_->Update(), S_OK);
  EXPECT_EQ(current(), 2);
  EXPECT_EQ(number(2), 22);
  ASSERT_EQ(open(1), S_OK);
  ASSERT_EQ(table_->GetRowAt(2), S_OK);
  EXPECT_EQ(depth(), 22);
}

TEST_F(RecordSet, AnUpdateOpensTheFileAndNotWhatTheNameSays) {
  open_rows(2);
  ASSERT_EQ(set_->put_Name(name("elsewhere.ovt").get()), S_OK);
  EXPECT_EQ(set_->Update(), S_OK);
  EXPECT_EQ(rows(), 2);
  ovfile::text shown;
  EXPECT_EQ(set_->get_Name(shown.out()), S_OK);
  EXPECT_EQ(shown.utf8(), "elsewhere.ovt");
}

TEST_F(RecordSet, MakesTables) {
  ASSERT_EQ(set_->Create(text_of(path("new.ovt")).get(), holes(false).get()), S_OK);
  EXPECT_EQ(set_->AddRow(), S_OK);
  EXPECT_EQ(number(2), -1);
  EXPECT_EQ(set_->Close(), S_OK);
  EXPECT_EQ(set_->Close(), S_OK);
  EXPECT_REPORT(set_->Create(text_of(path("new.ovt")).get(), nullptr),
                "Error: Empty table definition (schema).");
  auto forbidden = ovfile::create_schema();
  forbidden->AddNumericColumn(name("A B").get(), 0, 0);
  EXPECT_REPORT(set_->Create(text_of(path("bad.ovt")).get(), forbidden.get()), "Couldnt create file");
  EXPECT_FALSE(std::filesystem::exists(path("bad.ovt")));
}

TEST_F(RecordSet, AFailedCloseHasItsOwnWordsAndTheTableStaysOpen) {
  make_rows(1);
  ovtest::failing_files disk;
  ASSERT_EQ(open_set(), S_OK);
  ASSERT_EQ(put(2, 5), S_OK);
  disk.fail_all(ovtest::call::write);
  EXPECT_REPORT(set_->Close(), "Error in COvTableADO::Close");
  EXPECT_EQ(number(2), 5);
  disk.fail_nothing();
  EXPECT_EQ(set_->Close(), S_OK);
}

TEST_F(RecordSet, WithoutATableMovesSucceedAndValuesFail) {
  EXPECT_EQ(set_->MoveFirst(), S_OK);
  EXPECT_EQ(set_->MoveNext(), S_OK);
  EXPECT_EQ(set_->MovePrevious(), S_OK);
  EXPECT_EQ(set_->MoveLast(), S_OK);
  EXPECT_EQ(set_->MoveTo(5), S_OK);
  LONG count = 9;
  EXPECT_EQ(set_->GetRowCount(&count), E_FAIL);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(set_->AddRow(), E_FAIL);
  EXPECT_EQ(set_->Update(), E_FAIL);
  ovfile::variant value;
  EXPECT_EQ(set_->GetNamedColumn(name("X").get(), value.out()), E_FAIL);
}

TEST_F(RecordSet, TellsFactsLikeItsSibling) {
  open_rows(2);
  auto maintenance = set_.query<IOvTableMaintenance>();
  ASSERT_TRUE(maintenance);
  OvTableFacts facts{};
  facts.cbSize = sizeof facts;
  EXPECT_EQ(maintenance->GetFacts(&facts), S_OK);
  EXPECT_EQ(facts.rows, 2);
  EXPECT_EQ(facts.wordBytes, 8);
}

class CutRows : public TableHost {};

TEST_F(CutRows, ToFewerKeepsTheFirst) {
  make_rows(5);
  ASSERT_EQ(open(), S_OK);
  ASSERT_EQ(table_->GetLastRow(), S_OK);
  EXPECT_EQ(table_->ReduceRowCountTo(2), S_OK);
  LONG rows = 0;
  EXPECT_EQ(table_->GetRowCount(&rows), S_OK);
  EXPECT_EQ(rows, 2);
  EXPECT_EQ(row(), 2);
  EXPECT_EQ(depth(), 2);
  ASSERT_EQ(table_->Close(), S_OK);
  ASSERT_EQ(open(), S_OK);
  EXPECT_EQ(table_->GetRowCount(&rows), S_OK);
  EXPECT_EQ(rows, 2);
  EXPECT_EQ(table_->ReduceRowCountTo(0), S_OK);
  EXPECT_EQ(at_end(), 1);
}

TEST_F(CutRows, ToTheSameNumberChangesNothing) {
  make_rows(3);
  const ovtest::bytes before = content();
  ASSERT_EQ(open(), S_OK);
  EXPECT_EQ(table_->ReduceRowCountTo(3), S_OK);
  ASSERT_EQ(table_->Close(), S_OK);
  EXPECT_EQ(content(), before);
}

TEST_F(CutRows, ToMoreOrBelowZeroIsReported) {
  make_rows(3);
  ASSERT_EQ(open(), S_OK);
  EXPECT_REPORT(table_->ReduceRowCountTo(-1),
                "SetRowCount failed, requested row count must be positive or 0");
  EXPECT_REPORT(table_->ReduceRowCountTo(4),
                "SetRowCount failed, requested row count must not be greater than the current row count");
}

TEST_F(CutRows, LeavesTheFlagsAsTheyWere) {
  make_rows(3);
  ASSERT_EQ(open(), S_OK);
  ASSERT_EQ(table_->GetRowAt(9), S_FALSE);
  EXPECT_EQ(table_->ReduceRowCountTo(1), S_OK);
  EXPECT_EQ(at_end(), 1);
}

TEST_F(CutRows, WithoutATableFails) { EXPECT_EQ(table_->ReduceRowCountTo(0), E_FAIL); }

}  // namespace
