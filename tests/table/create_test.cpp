#include "table_host.h"

namespace {

using ovtest::bytes;
using ovtest::call;
using ovtest::TableHost;
using ovtest::text_of;

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

TEST_F(Create, OverTheTableThatIsHeldByAnotherSpelling) {
  make_rows(5);
  ASSERT_EQ(open(), S_OK);
  const auto spelled = path().parent_path() / "." / path().filename();
  ASSERT_EQ(table_->Create(text_of(spelled).get(), holes(false).get()), S_OK);
  LONG rows = 9;
  EXPECT_EQ(table_->GetRowCount(&rows), S_OK);
  EXPECT_EQ(rows, 0);
  EXPECT_EQ(content().size(), 2048U);
}

TEST_F(Create, OverTheTableThatIsHeldByALink) {
  make_rows(5);
  std::error_code refused;
  std::filesystem::create_symlink(path(), path("link.ovt"), refused);
  if (refused) GTEST_SKIP() << "no links can be made here";
  ASSERT_EQ(open(), S_OK);
  ASSERT_EQ(create(holes(false), "link.ovt"), S_OK);
  LONG rows = 9;
  EXPECT_EQ(table_->GetRowCount(&rows), S_OK);
  EXPECT_EQ(rows, 0);
  EXPECT_EQ(content().size(), 2048U);
}

TEST_F(Create, TheFieldsAreCountedBeforeTheirDefaultsAreRead) {
  const auto schema = numbers(65, false);
  const ovfile::variant words(text_of(std::string("no number")));
  ASSERT_EQ(schema->SetFieldDefault(1, words.get()), S_OK);
  EXPECT_REPORT(
      create(schema),
      "Failed to create file.\nPlease note there is a size limit of 64 4-byte fields per record in a "
      "single precision Orvexa file.\nPlease consider removing some columns and/or choosing double "
      "precision format");
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

}  // namespace
