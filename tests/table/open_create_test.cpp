#include "table_host.h"

namespace {

using ovtest::bytes;
using ovtest::call;
using ovtest::reported;
using ovtest::TableHost;
using ovtest::text_of;

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

class Links : public TableHost {
 protected:
  /// A link file with that description.
  void make_link(const std::string& description, const char* name = "link.ovt") {
    auto schema = ovfile::create_schema();
    schema->put_Description(text_of(description).get());
    schema->AddNumericColumn(text_of(std::string("X")).get(), 0, 0);
    ASSERT_EQ(create(schema, name), S_OK);
    ASSERT_EQ(table_->Close(), S_OK);
  }
  VARIANT_BOOL linked() {
    VARIANT_BOOL value = 9;
    EXPECT_EQ(table_->get_IsLinked(&value), S_OK);
    return value;
  }
};

TEST_F(Links, ABareNameLiesInTheLinksOwnFolder) {
  make_rows(2);
  make_link("LINKtable.ovt .");
  EXPECT_EQ(linked(), VARIANT_FALSE);
  ASSERT_EQ(open(0, "link.ovt"), S_OK);
  EXPECT_EQ(linked(), VARIANT_TRUE);
  EXPECT_EQ(depth(), 1);
  ovfile::text name;
  EXPECT_EQ(table_->get_Name(name.out()), S_OK);
  EXPECT_EQ(name.view(), ovtest::wide_path(path()));
}

TEST_F(Links, TheFlagStaysWhenAnOrdinaryFileFollows) {
  make_rows(2);
  make_link("LINKtable.ovt");
  ASSERT_EQ(open(0, "link.ovt"), S_OK);
  ASSERT_EQ(table_->Close(), S_OK);
  EXPECT_EQ(linked(), VARIANT_TRUE);
  ASSERT_EQ(open(), S_OK);
  EXPECT_EQ(linked(), VARIANT_TRUE);
}

TEST_F(Links, OneLevelIsFollowed) {
  make_rows(2);
  make_link("LINKtable.ovt .", "first.ovt");
  make_link("LINKfirst.ovt .", "second.ovt");
  ASSERT_EQ(open(0, "second.ovt"), S_OK);
  LONG rows = 9;
  EXPECT_EQ(table_->GetRowCount(&rows), S_OK);
  EXPECT_EQ(rows, 0);
}

TEST_F(Links, TheCaseOfTheMarkMatters) {
  make_link("Linktable.ovt .");
  EXPECT_EQ(open(0, "link.ovt"), S_OK);
  EXPECT_EQ(linked(), VARIANT_FALSE);
}

TEST_F(Links, AMissingTargetIsReported) {
  make_link("LINKnot there.ovt .");
  EXPECT_REPORT(open(0, "link.ovt"), missing);
}

TEST_F(Links, ATargetMayStandInAFolderBesideTheLink) {
  std::filesystem::create_directory(path("north"));
  make_rows(2, true, "north/pit.ovt");
  make_link("LINKnorth/pit.ovt .");
  ASSERT_EQ(open(0, "link.ovt"), S_OK);
  EXPECT_EQ(depth(), 1);
}

TEST_F(Links, AMissingTargetKeepsTheTableThatWasOpen) {
  make_rows(2);
  make_link("LINKnot there.ovt .");
  ASSERT_EQ(open(), S_OK);
  EXPECT_REPORT(open(0, "link.ovt"), missing);
  EXPECT_EQ(depth(), 1);
}

TEST_F(Links, ATargetWrittenWithBackslashesIsFoundOnEverySystem) {
  std::filesystem::create_directory(path("north"));
  make_rows(2, true, "north/pit.ovt");
  make_link("LINKnorth\\pit.ovt .");
  ASSERT_EQ(open(0, "link.ovt"), S_OK);
  EXPECT_EQ(depth(), 1);
}

TEST_F(Links, AnAbsoluteTargetIsTakenAsItIs) {
  const std::string target = ovf::utf8_from_wide(ovtest::wide_path(path()));
  if (target.size() > 54) GTEST_SKIP() << "the folder's name is too long for a description";
  make_rows(2);
  make_link("LINK" + target + " .");
  ASSERT_EQ(open(0, "link.ovt"), S_OK);
  EXPECT_EQ(depth(), 1);
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

class Create : public TableHost {
 protected:
  static ovfile::pointer<IOvSchema> numbers(int fields, bool is_double) {
    auto schema = ovfile::create_schema();
    schema->put_DoublePrecision(is_double ? VARIANT_TRUE : VARIANT_FALSE);
    for (int i = 0; i < fields; ++i) schema->AddNumericColumn(text_of("F" + std::to_string(i)).get(), i, 0);
    return schema;
  }
};

TEST_F(Create, WithoutASchemaNothingIsMade) {
  EXPECT_REPORT(table_->Create(text_of(path()).get(), nullptr), "Empty table definition (schema)");
  EXPECT_FALSE(std::filesystem::exists(path()));
}

TEST_F(Create, AnObjectThatIsNoSchemaIsRefusedLikeNone) {
  const auto other = ovfile::create_table();
  EXPECT_REPORT(table_->Create(text_of(path()).get(), other.get()), "Empty table definition (schema)");
}

TEST_F(Create, SixtyFiveFieldsAreRefusedInSinglePrecisionAndAnExistingFileStays) {
  ovtest::write_bytes(path(), bytes(10, 'x'));
  EXPECT_REPORT(
      create(numbers(65, false)),
      "Failed to create file.\nPlease note there is a size limit of 64 4-byte fields per record in a "
      "single precision Orvexa file.\nPlease consider removing some columns and/or choosing double "
      "precision format");
  EXPECT_EQ(content(), bytes(10, 'x'));
  EXPECT_EQ(create(numbers(64, false)), S_OK);
  EXPECT_EQ(content().size(), 2048U);
}

TEST_F(Create, TooManyWordsHaveTheirOwnMessage) {
  auto schema = ovfile::create_schema();
  schema->AddStringColumn(text_of(std::string("LONG")).get(), 260, nullptr, 0);
  EXPECT_REPORT(create(schema), "The Field count exceeds the limit of single precision");
  EXPECT_FALSE(std::filesystem::exists(path()));
}

TEST_F(Create, InDoublePrecisionEveryReasonReadsTheSame) {
  auto twice = numbers(1, true);
  twice->AddNumericColumn(text_of(std::string("F0")).get(), 0, 0);
  EXPECT_REPORT(create(twice), "Failed to create file");
  auto forbidden = numbers(1, true);
  forbidden->AddNumericColumn(text_of(std::string("A B")).get(), 0, 0);
  EXPECT_REPORT(create(forbidden), "Failed to create file");
  EXPECT_REPORT(create(numbers(2, true), "no folder/table.ovt"), "Failed to create file");
  EXPECT_FALSE(std::filesystem::exists(path()));
}

TEST_F(Create, InSinglePrecisionNamesHaveTheirRules) {
  auto forbidden = numbers(1, false);
  forbidden->AddNumericColumn(text_of(std::string("A B")).get(), 0, 0);
  EXPECT_REPORT(create(forbidden), "field name contains invalid characters");
  EXPECT_REPORT(create(numbers(2, false), "no folder/table.ovt"), "cannot create file");
}

TEST_F(Create, TheSchemaIsHeldAndFilledBack) {
  auto schema = holes(false);
  schema->SetFieldOffset(2, 77);
  ASSERT_EQ(create(schema), S_OK);
  ovfile::pointer<IOvSchema> held;
  ASSERT_EQ(table_->get_Schema(held.out()), S_OK);
  EXPECT_EQ(held.get(), schema.get());
  LONG offset = 9;
  EXPECT_EQ(schema->GetFieldOffset(2, &offset), S_OK);
  EXPECT_EQ(offset, 0);
  LONG count = 0;
  EXPECT_EQ(schema->get_FieldCount(&count), S_OK);
  EXPECT_EQ(count, 3);
}

TEST_F(Create, ALatchedSchemaMakesATableToo) {
  auto schema = holes(true);
  schema->put_ReadOnly(VARIANT_TRUE);
  ASSERT_EQ(create(schema), S_OK);
  LONG count = 0;
  EXPECT_EQ(schema->get_FieldCount(&count), S_OK);
  EXPECT_EQ(count, 3);
  VARIANT_BOOL latched = 0;
  EXPECT_EQ(schema->get_ReadOnly(&latched), S_OK);
  EXPECT_NE(latched, 0);
}

TEST_F(Create, OverTheTableThatIsHeldItself) {
  make_rows(5);
  ASSERT_EQ(open(), S_OK);
  ASSERT_EQ(create(holes(false)), S_OK);
  LONG rows = 9;
  EXPECT_EQ(table_->GetRowCount(&rows), S_OK);
  EXPECT_EQ(rows, 0);
  EXPECT_EQ(content().size(), 2048U);
}

TEST_F(Create, ARefusedDefinitionLeavesTheOpenTableAsItWas) {
  make_rows(1, false);
  ASSERT_EQ(open(), S_OK);
  ASSERT_EQ(table_->SetColumnFloat(2, 0.1F), S_OK);
  auto refused = numbers(1, true);
  refused->AddNumericColumn(text_of(std::string("A B")).get(), 0, 0);
  EXPECT_REPORT(create(refused, "new.ovt"), "Failed to create file");
  EXPECT_EQ(depth(), 0.1);
  EXPECT_REPORT(create(numbers(1, false), "no folder/new.ovt"), "cannot create file");
  EXPECT_EQ(depth(), 0.1);
}

TEST_F(Create, AWriteThatFailsIsReportedAndLeavesNoFile) {
  ovtest::failing_files failing;
  failing.fail_all(call::write);
  EXPECT_REPORT(create(holes(false)), "Failed to create file");
  EXPECT_REPORT(create(holes(true)), "Failed to create file");
  EXPECT_FALSE(std::filesystem::exists(path()));
}

using Properties = TableHost;

TEST_F(Properties, TheNameIsTextAndRenamesNothing) {
  make_rows(1);
  ASSERT_EQ(open(), S_OK);
  EXPECT_EQ(table_->put_Name(text_of(std::string("elsewhere")).get()), S_OK);
  ovfile::text name;
  EXPECT_EQ(table_->get_Name(name.out()), S_OK);
  EXPECT_EQ(name.utf8(), "elsewhere");
  EXPECT_EQ(depth(), 1);
}

TEST_F(Properties, AnEmptyNameIsANullString) {
  OLECHAR elsewhere = 0;
  BSTR name = &elsewhere;
  EXPECT_EQ(table_->get_Name(&name), S_OK);
  EXPECT_EQ(name, nullptr);
}

TEST_F(Properties, PutSchemaTakesTheCallersReferenceOver) {
  auto schema = ovfile::create_schema();
  IOvSchema* given = schema.get();
  given->AddRef();
  EXPECT_EQ(table_->put_Schema(given), S_OK);
  given->AddRef();
  EXPECT_EQ(given->Release(), 2U);  // the test's and the table's
  EXPECT_EQ(table_->put_Schema(nullptr), S_OK);
  given->AddRef();
  EXPECT_EQ(given->Release(), 1U);
}

TEST_F(Properties, NullOutPointersAreRefused) {
  EXPECT_EQ(table_->get_Name(nullptr), E_POINTER);
  EXPECT_EQ(table_->get_Schema(nullptr), E_POINTER);
  EXPECT_EQ(table_->GetRowCount(nullptr), E_POINTER);
  EXPECT_EQ(table_->GetCurrentRow(nullptr), E_POINTER);
  EXPECT_EQ(table_->get_EOF(nullptr), E_POINTER);
  EXPECT_EQ(table_->get_BOF(nullptr), E_POINTER);
  EXPECT_EQ(table_->get_IsLinked(nullptr), E_POINTER);
  EXPECT_EQ(table_->GetColumn(1, nullptr), E_POINTER);
  EXPECT_EQ(table_->GetColumnAsDouble(1, nullptr), E_POINTER);
  EXPECT_EQ(table_->GetColumnAsFloat(1, nullptr), E_POINTER);
  EXPECT_EQ(table_->GetColumnAsString(1, nullptr), E_POINTER);
}

TEST_F(Properties, FactsTellWhatTheFileLooksLike) {
  make_rows(130);
  ASSERT_EQ(open(1), S_OK);
  const auto maintenance = table_.query<IOvTableMaintenance>();
  ASSERT_TRUE(maintenance);
  OvTableFacts facts{};
  EXPECT_EQ(maintenance->GetFacts(&facts), E_INVALIDARG);
  facts.cbSize = sizeof facts;
  ASSERT_EQ(maintenance->GetFacts(&facts), S_OK);
  EXPECT_EQ(facts.wordBytes, 8);
  EXPECT_EQ(facts.byteOrder, 0);
  EXPECT_EQ(facts.atoms, 4);
  EXPECT_EQ(facts.headerPages, 1);
  EXPECT_EQ(facts.recordWords, 3);
  EXPECT_EQ(facts.recordsPerPage, 169);
  EXPECT_EQ(facts.recordsInLastPage, 130);
  EXPECT_EQ(facts.pages, 2);
  EXPECT_EQ(facts.rows, 130);
  EXPECT_EQ(facts.fileBytes, 2 * 4096);
  EXPECT_EQ(ovfile::to_utf8(facts.owner), "SYSTEM  ");
  EXPECT_EQ(ovfile::to_utf8(facts.firstName), "        ");
  EXPECT_EQ(ovfile::to_utf8(facts.description), "holes" + std::string(59, ' '));
  EXPECT_EQ(maintenance->GetFacts(nullptr), E_POINTER);
}

}  // namespace
