#include "table_host.h"

namespace {

using ovtest::bytes;
using ovtest::call;
using ovtest::reported;
using ovtest::TableHost;

constexpr const char* missing = "File does not exist";
constexpr const char* no_table = "Not a valid orvexa table";

using Open = TableHost;

TEST_F(Open, AMissingFileIsReportedAndNothingIsOpen) {
  EXPECT_REPORT(open(), missing);
  LONG rows = 5;
  EXPECT_EQ(table_->GetRowCount(&rows), E_FAIL);
  EXPECT_EQ(rows, 0);
}

TEST_F(Open, TheSourceOfAReportIsTheClass) {
  EXPECT_EQ(open(), E_FAIL);
  EXPECT_EQ(ovtest::reported_source(), "OvFile.OvTable.1");
}

TEST_F(Open, WhatIsNoTableIsRefused) {
  ovtest::write_bytes(path("notes.txt"), bytes(3000, ' '));
  EXPECT_REPORT(open(0, "notes.txt"), no_table);
  std::filesystem::create_directory(path("folder"));
  EXPECT_REPORT(open(0, "folder"), no_table);
}

TEST_F(Open, FillsTheSchemaFromTheFile) {
  make_rows(1);
  ASSERT_EQ(open(), S_OK);
  ovfile::pointer<IOvSchema> schema;
  ASSERT_EQ(table_->get_Schema(schema.out()), S_OK);
  LONG count = 0;
  EXPECT_EQ(schema->get_FieldCount(&count), S_OK);
  EXPECT_EQ(count, 3);
  ovfile::text name;
  EXPECT_EQ(schema->GetFieldName(1, name.out()), S_OK);
  EXPECT_EQ(name.utf8(), "BHID");
  LONG width = 0;
  EXPECT_EQ(schema->GetFieldSizeChars(1, &width), S_OK);
  EXPECT_EQ(width, 8);
  LONG offset = 7;
  EXPECT_EQ(schema->GetFieldOffset(1, &offset), S_OK);
  EXPECT_EQ(offset, 0);
  EXPECT_EQ(schema->GetFieldOffset(3, &offset), S_OK);
  EXPECT_EQ(offset, -1);
  ovfile::variant value;
  EXPECT_EQ(schema->GetFieldDefault(3, value.out()), S_OK);
  EXPECT_EQ(value.number(), 2.75);
  ovfile::text description;
  EXPECT_EQ(schema->get_Description(description.out()), S_OK);
  EXPECT_EQ(description.utf8(), "holes");
  VARIANT_BOOL is_double = 0;
  EXPECT_EQ(schema->get_DoublePrecision(&is_double), S_OK);
  EXPECT_EQ(is_double, VARIANT_TRUE);
}

TEST_F(Open, ReadOnlyLatchesTheSchema) {
  make_rows(1);
  for (const LONG read_only : {0, 1, 7}) {
    ASSERT_EQ(open(read_only), S_OK);
    ovfile::pointer<IOvSchema> schema;
    ASSERT_EQ(table_->get_Schema(schema.out()), S_OK);
    VARIANT_BOOL latched = 9;
    EXPECT_EQ(schema->get_ReadOnly(&latched), S_OK);
    EXPECT_EQ(latched != 0, read_only != 0);
  }
}

TEST_F(Open, ASecondOpenWritesAndReplacesTheFirst) {
  make_rows(1);
  make_rows(3, true, "other.ovt");
  ASSERT_EQ(open(), S_OK);
  ASSERT_EQ(table_->SetColumnDouble(2, 42), S_OK);
  ASSERT_EQ(open(0, "other.ovt"), S_OK);
  LONG rows = 0;
  EXPECT_EQ(table_->GetRowCount(&rows), S_OK);
  EXPECT_EQ(rows, 3);
  ASSERT_EQ(open(), S_OK);
  EXPECT_EQ(depth(), 42);
}

TEST_F(Open, AFailedSecondOpenKeepsTheFirstTable) {
  make_rows(2);
  ovtest::write_bytes(path("notes.txt"), bytes(3000, ' '));
  ASSERT_EQ(open(), S_OK);
  EXPECT_EQ(open(0, "notes.txt"), E_FAIL);
  EXPECT_EQ(open(0, "missing.ovt"), E_FAIL);
  EXPECT_EQ(depth(), 1);
}

TEST_F(Open, AFirstRowThatCannotBeReadIsReportedAndTheTableIsOpen) {
  make_rows(1);
  bytes file = content();
  file.resize(4096 + 2);  // one record in the last page needs 3
  ovtest::write_bytes(path(), file);
  SetErrorInfo(0, nullptr);
  const std::string words =
      "OvFile Error: cache failed to read an entire page. (4098 bytes read instead of 4099)";
  EXPECT_EQ(open(), S_OK);
  EXPECT_EQ(reported(), words);
  double value = 7;
  EXPECT_REPORT(table_->GetColumnAsDouble(2, &value), words);
  EXPECT_EQ(value, 0);
}

TEST_F(Open, TheTableThatIsStillHeldKeepsItsOwnMode) {
  make_rows(2);
  ovtest::write_bytes(path("notes.txt"), bytes(3000, ' '));
  ASSERT_EQ(open(1), S_OK);
  EXPECT_EQ(open(0, "notes.txt"), E_FAIL);
  EXPECT_REPORT(table_->SetColumnDouble(2, 5), "SetColumn failed, file is open in read-only mode");
  EXPECT_REPORT(table_->AddRow(), "AddRow failed, current row is not valid");
}

TEST_F(Open, AHeldTableThatCannotBeWrittenStopsTheNextOpen) {
  make_rows(1);
  make_rows(1, true, "other.ovt");
  ovtest::failing_files failing;
  ASSERT_EQ(open(), S_OK);
  ASSERT_EQ(table_->SetColumnDouble(2, 5), S_OK);
  failing.fail_nth(call::write, 1);
  EXPECT_REPORT(open(0, "other.ovt"),
                ovtest::with_failing_code("OvFile Error: doFlush failed to write an entire page."));
  EXPECT_EQ(depth(), 5);
}

using Close = TableHost;

TEST_F(Close, NothingOpenIsNothingToDo) { EXPECT_EQ(table_->Close(), S_OK); }

TEST_F(Close, LetsGoOfSchemaAndTableAndKeepsTheName) {
  make_rows(1);
  ASSERT_EQ(open(), S_OK);
  ASSERT_EQ(table_->Close(), S_OK);
  ovfile::pointer<IOvSchema> schema;
  EXPECT_EQ(table_->get_Schema(schema.out()), S_OK);
  EXPECT_FALSE(schema);
  ovfile::text name;
  EXPECT_EQ(table_->get_Name(name.out()), S_OK);
  EXPECT_EQ(name.view(), ovtest::wide_path(path()));
}

TEST_F(Close, AFailedWriteIsReportedAndTheTableStaysOpen) {
  make_rows(1);
  ovtest::failing_files failing;
  ASSERT_EQ(open(), S_OK);
  ASSERT_EQ(table_->SetColumnDouble(2, 5), S_OK);
  failing.fail_all(call::write);
  EXPECT_REPORT(table_->Close(), "Error in COvTable::Close");
  failing.fail_nothing();
  EXPECT_EQ(depth(), 5);
  EXPECT_EQ(table_->Close(), S_OK);
  ASSERT_EQ(open(), S_OK);
  EXPECT_EQ(depth(), 5);
}

}  // namespace
