#include "table_host.h"

namespace {

using ovtest::TableHost;
using ovtest::text_of;

constexpr const char* set_read_only = "SetColumn failed, file is open in read-only mode";

class Fields : public TableHost {
 protected:
  void open_one(bool is_double = true) {
    make_rows(2, is_double);
    ASSERT_EQ(open(), S_OK);
  }
  static ovfile::text name(const char* text) { return text_of(std::string(text)); }
  ovfile::pointer<IOvSchema> schema() {
    ovfile::pointer<IOvSchema> held;
    EXPECT_EQ(table_->get_Schema(held.out()), S_OK);
    return held;
  }
  std::string schema_name(LONG column) {
    ovfile::text found;
    EXPECT_EQ(schema()->GetFieldName(column, found.out()), S_OK);
    return found.utf8();
  }
  ovfile::variant schema_default(LONG column) {
    ovfile::variant found;
    EXPECT_EQ(schema()->GetFieldDefault(column, found.out()), S_OK);
    return found;
  }
  bool schema_implicit(LONG column) {
    LONG offset = 0;
    EXPECT_EQ(schema()->GetFieldOffset(column, &offset), S_OK);
    return offset == -1;
  }
  LONG field_count() {
    LONG count = 0;
    EXPECT_EQ(schema()->get_FieldCount(&count), S_OK);
    return count;
  }
  double number(LONG column) {
    double value = -99;
    EXPECT_EQ(table_->GetColumnAsDouble(column, &value), S_OK);
    return value;
  }
  void reopen() {
    ASSERT_EQ(table_->Close(), S_OK);
    ASSERT_EQ(open(), S_OK);
  }
};

TEST_F(Fields, ANewNameStandsInFileAndSchema) {
  for (const bool is_double : {false, true}) {
    open_one(is_double);
    EXPECT_EQ(table_->SetColumnName(2, name("TODEPTH").get()), S_OK);
    EXPECT_EQ(schema_name(2), "TODEPTH");
    EXPECT_EQ(number(2), 1);
    reopen();
    EXPECT_EQ(schema_name(1), "BHID");
    EXPECT_EQ(schema_name(2), "TODEPTH");
    EXPECT_EQ(number(2), 1);
    ASSERT_EQ(table_->Close(), S_OK);
  }
}

TEST_F(Fields, AForbiddenNameIsReportedAndChangesNothing) {
  open_one(false);
  EXPECT_REPORT(table_->SetColumnName(2, name("TOTALDEPTH").get()), "field name exceeds 8 characters");
  EXPECT_REPORT(table_->SetColumnName(2, name("A B").get()), "field name contains invalid characters");
  EXPECT_REPORT(table_->SetColumnName(2, name("BHID").get()), "field name already exists");
  EXPECT_EQ(schema_name(2), "DEPTH");
  EXPECT_EQ(table_->SetColumnName(2, name("DEPTH").get()), S_OK);
  const ovtest::bytes before = content();
  ASSERT_EQ(table_->Close(), S_OK);
  EXPECT_EQ(content(), before);
}

TEST_F(Fields, ANewNameInDoublePrecisionHasItsOwnWords) {
  open_one();
  EXPECT_REPORT(table_->SetColumnName(2, name("ABCDEFGHIJKLMNOPQRSTUVWXY").get()), "field name is too long");
  EXPECT_REPORT(table_->AddImplicitNumericColumnDouble(name("ABCDEFGHIJKLMNOPQRSTUVWXY").get(), 1),
                "field name too long");
}

TEST_F(Fields, AColumnThatIsNotThereCannotBeRenamed) {
  open_one();
  EXPECT_REPORT(table_->SetColumnName(5, name("X").get()), "field index out of range");
  EXPECT_EQ(field_count(), 3);
  EXPECT_EQ(schema_name(3), "DENSITY");
}

TEST_F(Fields, AReadOnlyTableAndAColumnBelowOneHaveTheSameWords) {
  open_one();
  EXPECT_REPORT(table_->SetColumnName(0, name("X").get()), set_read_only);
  EXPECT_REPORT(table_->SetColumnDefaultString(0, name("X").get()), set_read_only);
  EXPECT_REPORT(table_->SetColumnDefaultFloat(-1, 1), set_read_only);
  EXPECT_REPORT(table_->SetColumnDefaultDouble(0, 1), set_read_only);
  ASSERT_EQ(table_->Close(), S_OK);
  const ovtest::bytes before = content();
  ASSERT_EQ(open(1), S_OK);
  EXPECT_REPORT(table_->SetColumnName(2, name("X").get()), set_read_only);
  EXPECT_REPORT(table_->SetColumnDefaultString(1, name("X").get()), set_read_only);
  EXPECT_REPORT(table_->SetColumnDefaultFloat(2, 1), set_read_only);
  EXPECT_REPORT(table_->SetColumnDefaultDouble(2, 1), set_read_only);
  EXPECT_REPORT(table_->AddImplicitNumericColumnFloat(name("X").get(), 1), set_read_only);
  EXPECT_REPORT(table_->AddImplicitNumericColumnDouble(name("X").get(), 1), set_read_only);
  EXPECT_REPORT(table_->AddImplicitStringColumn(name("X").get(), 4, name("Y").get()), set_read_only);
  ASSERT_EQ(table_->Close(), S_OK);
  EXPECT_EQ(content(), before);
}

TEST_F(Fields, DefaultsStandInFileAndSchema) {
  for (const bool is_double : {false, true}) {
    open_one(is_double);
    EXPECT_EQ(table_->SetColumnDefaultDouble(3, 2.5), S_OK);
    EXPECT_EQ(number(3), 2.5);  // an implicit column reads its default
    EXPECT_EQ(schema_default(3).number(), 2.5);
    EXPECT_EQ(table_->SetColumnDefaultFloat(2, 0.25F), S_OK);
    EXPECT_EQ(schema_default(2).number(), 0.25);
    EXPECT_EQ(table_->SetColumnDefaultString(1, name("LK").get()), S_OK);
    EXPECT_EQ(ovfile::to_utf8(schema_default(1).view()), "LK      ");
    EXPECT_EQ(number(2), 1);
    ASSERT_EQ(table_->AddRow(), S_OK);
    EXPECT_EQ(number(2), 0.25);
    EXPECT_EQ(column_text(1), "LK      ");
    reopen();
    EXPECT_EQ(schema_default(3).number(), 2.5);
    EXPECT_EQ(schema_default(2).number(), 0.25);
    EXPECT_EQ(ovfile::to_utf8(schema_default(1).view()), "LK      ");
    ASSERT_EQ(table_->Close(), S_OK);
  }
}

TEST_F(Fields, ADefaultOfTheWrongKindIsReported) {
  open_one();
  EXPECT_REPORT(table_->SetColumnDefaultDouble(1, 1), "Cannot write numeric value to an alphanumeric field.");
  EXPECT_REPORT(table_->SetColumnDefaultString(2, name("X").get()),
                "Cannot write alphanumeric value to a non-alphanumeric field.");
  EXPECT_EQ(schema_default(2).number(), -1);
}

TEST_F(Fields, ImplicitColumnsStandInFileAndSchema) {
  for (const bool is_double : {false, true}) {
    open_one(is_double);
    ASSERT_EQ(table_->GetNextRow(), S_OK);
    EXPECT_EQ(table_->AddImplicitNumericColumnFloat(name("XINC").get(), 0.5F), S_OK);
    EXPECT_EQ(table_->AddImplicitNumericColumnDouble(name("YINC").get(), 12.25), S_OK);
    EXPECT_EQ(table_->AddImplicitStringColumn(name("ZONE").get(), 6, name("NORTH").get()), S_OK);
    EXPECT_EQ(row(), 2);
    const auto check = [&] {
      EXPECT_EQ(field_count(), 6);
      EXPECT_EQ(schema_name(4), "XINC");
      EXPECT_EQ(schema_name(6), "ZONE");
      for (const LONG column : {4, 5, 6}) EXPECT_TRUE(schema_implicit(column));
      EXPECT_EQ(number(4), 0.5);
      EXPECT_EQ(number(5), 12.25);
      EXPECT_EQ(column_text(6), "NORTH   ");
      EXPECT_EQ(schema_default(5).number(), 12.25);
      EXPECT_EQ(ovfile::to_utf8(schema_default(6).view()), "NORTH   ");
      LONG width = 0;
      EXPECT_EQ(schema()->GetFieldSizeChars(6, &width), S_OK);
      EXPECT_EQ(width, 8);
    };
    check();
    EXPECT_EQ(number(2), 2);
    reopen();
    check();
    ASSERT_EQ(table_->Close(), S_OK);
  }
}

TEST_F(Fields, AFloatForAnImplicitColumnOfDoublesIsWidenedPlainly) {
  open_one();
  EXPECT_EQ(table_->AddImplicitNumericColumnFloat(name("F").get(), 0.1F), S_OK);
  EXPECT_EQ(number(4), static_cast<double>(0.1F));
  EXPECT_EQ(schema_default(4).number(), static_cast<double>(0.1F));
}

TEST_F(Fields, TheSchemaHasWhatAnImplicitColumnWasAskedForAndOpenedAgainWhatTheFileHas) {
  for (const bool is_double : {false, true}) {
    open_one(is_double);
    EXPECT_EQ(table_->AddImplicitStringColumn(name("NONE").get(), 0, name("abcdef").get()), S_OK);
    EXPECT_EQ(table_->AddImplicitStringColumn(name("SHORT").get(), 5, name("abcdefghijk").get()), S_OK);
    EXPECT_EQ(table_->AddImplicitNumericColumnDouble(name("TENTH").get(), 0.1), S_OK);
    const auto expect_text = [&](LONG column, LONG width, const char* text) {
      LONG found = 0;
      EXPECT_EQ(schema()->GetFieldSizeChars(column, &found), S_OK);
      EXPECT_EQ(found, width);
      EXPECT_EQ(ovfile::to_utf8(schema_default(column).view()), text);
    };
    expect_text(4, 0, "");
    expect_text(5, 8, "abcdefgh");
    EXPECT_EQ(schema_default(6).number(), 0.1);
    for (const LONG column : {4, 5, 6}) EXPECT_TRUE(schema_implicit(column));
    reopen();
    expect_text(4, 4, "abcd");
    expect_text(5, 8, "abcdefgh");
    EXPECT_EQ(schema_default(6).number(), is_double ? 0.1 : static_cast<double>(0.1F));
    for (const LONG column : {4, 5, 6}) EXPECT_TRUE(schema_implicit(column));
    ASSERT_EQ(table_->Close(), S_OK);
  }
}

TEST_F(Fields, AnImplicitColumnNeedsAFreeName) {
  open_one();
  EXPECT_REPORT(table_->AddImplicitNumericColumnDouble(name("BHID").get(), 1), "field name already exists");
  EXPECT_REPORT(table_->AddImplicitStringColumn(name("@X").get(), 4, name("").get()),
                "field name contains invalid characters");
  EXPECT_EQ(field_count(), 3);
}

TEST_F(Fields, NamesThatDifferInCaseAreTwoColumns) {
  open_one();
  EXPECT_EQ(table_->AddImplicitNumericColumnDouble(name("AU_PPM").get(), 1), S_OK);
  EXPECT_EQ(table_->AddImplicitNumericColumnDouble(name("au_ppm").get(), 2), S_OK);
  reopen();
  EXPECT_EQ(number(4), 1);
  EXPECT_EQ(number(5), 2);
}

TEST_F(Fields, WithoutATableTheyFailSilently) {
  const auto silent = [](HRESULT status) {
    EXPECT_EQ(status, E_FAIL);
    EXPECT_EQ(ovtest::reported(), "(none)");
  };
  SetErrorInfo(0, nullptr);
  silent(table_->SetColumnName(1, name("X").get()));
  silent(table_->SetColumnDefaultDouble(1, 1));
  silent(table_->AddImplicitNumericColumnDouble(name("X").get(), 1));
}

TEST_F(Fields, WithoutASchemaTheFileAloneIsChanged) {
  open_one();
  ASSERT_EQ(table_->put_Schema(nullptr), S_OK);
  EXPECT_EQ(table_->SetColumnName(2, name("TO").get()), S_OK);
  EXPECT_EQ(table_->SetColumnDefaultDouble(3, 3), S_OK);
  EXPECT_EQ(table_->AddImplicitNumericColumnDouble(name("X").get(), 9), S_OK);
  reopen();
  EXPECT_EQ(schema_name(2), "TO");
  EXPECT_EQ(schema_default(3).number(), 3);
  EXPECT_EQ(number(4), 9);
}

}  // namespace
