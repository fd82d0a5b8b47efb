// Two objects that have one table open whose header takes two pages: what one changes there is not undone by
// the other.
#include "table_host.h"

namespace {

using ovtest::text_of;

constexpr LONG first_of_page_two = 69;

class WideHeader : public ovtest::TableHost {
 protected:
  void SetUp() override {
    const auto schema = ovfile::create_schema();
    schema->put_DoublePrecision(VARIANT_TRUE);
    for (int i = 1; i <= 100; ++i) {
      ASSERT_EQ(schema->AddNumericColumn(text_of("C" + std::to_string(i)).get(), 0, 0), S_OK);
    }
    ASSERT_EQ(create(schema), S_OK);
    ASSERT_EQ(table_->AddRow(), S_OK);
    ASSERT_EQ(table_->Close(), S_OK);
    ASSERT_EQ(open(), S_OK);
    ASSERT_EQ(other_->Open(text_of(path()).get(), 0), S_OK);
  }

  static double default_of(const ovfile::pointer<IOvTable>& table, LONG column) {
    ovfile::pointer<IOvSchema> schema;
    ovfile::variant value;
    EXPECT_EQ(table->get_Schema(schema.out()), S_OK);
    EXPECT_EQ(schema->GetFieldDefault(column, value.out()), S_OK);
    return value.number();
  }
  void expect_default_in_file(LONG column, double value) {
    ASSERT_EQ(table_->Close(), S_OK);
    ASSERT_EQ(open(1), S_OK);
    EXPECT_EQ(default_of(table_, column), value);
  }

  ovfile::pointer<IOvTable> other_ = ovfile::create_table();
};

TEST_F(WideHeader, ADefaultOfAnotherOutlivesOnes) {
  ASSERT_EQ(table_->SetColumnDefaultDouble(first_of_page_two, 1), S_OK);
  ASSERT_EQ(table_->FlushChanges(), S_OK);
  ASSERT_EQ(other_->Close(), S_OK);
  ASSERT_EQ(other_->Open(text_of(path()).get(), 0), S_OK);
  ASSERT_EQ(other_->SetColumnDefaultDouble(90, 7), S_OK) << ovtest::reported();
  ASSERT_EQ(other_->Close(), S_OK);
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(table_->SetColumnDefaultDouble(first_of_page_two, 2), E_FAIL);
  EXPECT_NE(ovtest::reported().find("another program has changed the table's file meanwhile"),
            std::string::npos);
  expect_default_in_file(90, 7);
}

TEST_F(WideHeader, ADefaultOfAnotherOutlivesATableThatIsMadeAnew) {
  ASSERT_EQ(table_->AddRow(), S_OK);
  ASSERT_EQ(table_->FlushChanges(), S_OK);
  ASSERT_EQ(other_->Close(), S_OK);
  ASSERT_EQ(other_->Open(text_of(path()).get(), 0), S_OK);
  ASSERT_EQ(other_->SetColumnDefaultDouble(90, 7), S_OK) << ovtest::reported();
  ASSERT_EQ(other_->Close(), S_OK);
  const auto maintenance = table_.query<IOvTableMaintenance>();
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(maintenance->Rebuild(nullptr, 0, nullptr, 0, nullptr), E_FAIL);
  EXPECT_NE(ovtest::reported().find("another program has changed it meanwhile"), std::string::npos);
  expect_default_in_file(90, 7);
}

}  // namespace
