// A table's own names and description survive being made anew, also those that a new table could not have.
#include <algorithm>

#include "table_host.h"

#include "support/table_cases.h"

namespace {

using ovtest::TableHost;
using ovtest::text_of;

class KeptNames : public TableHost {
 protected:
  void write_case(const std::string& name) {
    for (const ovtest::table_case& each : ovtest::table_cases()) {
      if (each.name == name) ovtest::write_bytes(path("table.ovt"), each.file);
    }
    ASSERT_EQ(open(), S_OK);
  }
  std::vector<std::string> names() {
    ovfile::pointer<IOvSchema> schema;
    EXPECT_EQ(table_->get_Schema(schema.out()), S_OK);
    LONG count = 0;
    EXPECT_EQ(schema->get_FieldCount(&count), S_OK);
    std::vector<std::string> found;
    for (LONG column = 1; column <= count; ++column) {
      ovfile::text name;
      EXPECT_EQ(schema->GetFieldName(column, name.out()), S_OK);
      found.push_back(name.utf8());
    }
    return found;
  }
  HRESULT rebuild(IOvSchema* schema = nullptr) {
    return table_.query<IOvTableMaintenance>()->Rebuild(schema, 0, nullptr, 0, nullptr);
  }
};

TEST_F(KeptNames, LongOnesWhereNewOnesMayNotBeLong) {
  write_case("double_long_names");
  const auto before = names();
  ASSERT_TRUE(std::ranges::any_of(before, [](const std::string& name) { return name.size() > 8; }));
  const ovtest::bytes file = content();
  EXPECT_EQ(rebuild(), S_OK);
  EXPECT_EQ(names(), before);
  EXPECT_EQ(content().size(), file.size());
}

TEST_F(KeptNames, OnesThatComeTwice) {
  write_case("single_names_twice");
  const auto before = names();
  EXPECT_EQ(rebuild(), S_OK);
  EXPECT_EQ(names(), before);
}

TEST_F(KeptNames, AreNoReasonToTakeANewOneTwice) {
  make_rows(1);
  ASSERT_EQ(open(), S_OK);
  auto schema = ovfile::create_schema();
  schema->put_DoublePrecision(VARIANT_TRUE);
  for (const char* name : {"DEPTH", "DEPTH"}) {
    schema->AddNumericColumn(text_of(std::string(name)).get(), 0, 0);
  }
  EXPECT_REPORT(rebuild(schema.get()),
                "Rebuild failed, no copy of the table can be made: field name already exists");
  EXPECT_EQ(names(), (std::vector<std::string>{"BHID", "DEPTH", "DENSITY"}));
}

TEST_F(KeptNames, ASchemaWithoutADescriptionKeepsTheTablesToTheLastCharacter) {
  make_rows(1, false);
  ovtest::bytes file = content();
  const std::string description = "Grades of the north pit, cut at sixty-four characters, as 1234567";
  for (std::size_t i = 0; i < 64; ++i) file[16 + i] = static_cast<unsigned char>(description[i]);
  file[20] = 0;
  ovtest::write_bytes(path("table.ovt"), file);
  ASSERT_EQ(open(), S_OK);
  auto schema = ovfile::create_schema();
  schema->AddNumericColumn(text_of(std::string("DEPTH")).get(), 0, 0);
  EXPECT_EQ(rebuild(schema.get()), S_OK);
  ASSERT_EQ(table_->Close(), S_OK);
  const ovtest::bytes after = content();
  EXPECT_TRUE(std::equal(file.begin(), file.begin() + 88, after.begin()));
}

TEST_F(KeptNames, ADescriptionOfTheSchemaReplacesTheTables) {
  make_rows(1);
  ASSERT_EQ(open(), S_OK);
  auto schema = ovfile::create_schema();
  schema->put_DoublePrecision(VARIANT_TRUE);
  schema->put_Description(text_of(std::string("other words")).get());
  schema->AddNumericColumn(text_of(std::string("DEPTH")).get(), 0, 0);
  EXPECT_EQ(rebuild(schema.get()), S_OK);
  ovfile::pointer<IOvSchema> held;
  ASSERT_EQ(table_->get_Schema(held.out()), S_OK);
  ovfile::text description;
  EXPECT_EQ(held->get_Description(description.out()), S_OK);
  EXPECT_EQ(description.utf8(), "other words");
}

}  // namespace
