#include "table_host.h"

namespace {

using ovtest::TableHost;
using ovtest::text_of;

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

TEST_F(Properties, SyncWaitsForRowsAndThenForTheHeaderThatCountsThem) {
  make_rows(3);
  ovtest::failing_files watched;
  ASSERT_EQ(open(), S_OK);
  const auto maintenance = table_.query<IOvTableMaintenance>();
  ASSERT_EQ(table_->AddRow(), S_OK);
  std::vector<ovtest::call> calls;
  watched.decide = [&](ovtest::call kind, const ovf::wide&) {
    if (kind == ovtest::call::write || kind == ovtest::call::sync) calls.push_back(kind);
    return ovtest::fate::works;
  };
  EXPECT_EQ(maintenance->Sync(), S_OK);
  EXPECT_EQ(calls, (std::vector<ovtest::call>{ovtest::call::write, ovtest::call::sync, ovtest::call::write,
                                              ovtest::call::sync}));
  calls.clear();
  EXPECT_EQ(table_->FlushChanges(), S_OK);
  EXPECT_TRUE(calls.empty());
  watched.fail_nth(ovtest::call::sync, 1);
  EXPECT_REPORT(maintenance->Sync(),
                ovtest::with_failing_code("OvFile Error: the disk did not take what was written."));
  watched.fail_nothing();
  ASSERT_EQ(open(1), S_OK);
  watched.fail_all(ovtest::call::sync);
  EXPECT_EQ(maintenance->Sync(), S_OK);
}

}  // namespace
