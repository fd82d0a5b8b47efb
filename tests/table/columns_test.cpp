#include "table_host.h"

namespace {

using ovtest::reported;
using ovtest::TableHost;
using ovtest::text_of;

constexpr const char* no_field = "index out of range, field not found.";

class Columns : public TableHost {
 protected:
  void open_one(bool is_double = true) {
    make_rows(1, is_double);
    ASSERT_EQ(open(), S_OK);
  }
  ovfile::variant column(LONG index) {
    ovfile::variant value;
    EXPECT_EQ(table_->GetColumn(index, value.out()), S_OK);
    return value;
  }
  HRESULT set(LONG index, const ovfile::variant& value) { return table_->SetColumn(index, value.get()); }
  HRESULT set_text(LONG index, const std::string& text) {
    return table_->SetColumnString(index, text_of(text).get());
  }
};

TEST_F(Columns, AFloatIsTidiedOnItsWayToADouble) {
  open_one(false);
  ASSERT_EQ(table_->SetColumnFloat(2, 0.1F), S_OK);
  EXPECT_EQ(depth(), 0.1);
  ASSERT_EQ(table_->SetColumnFloat(2, 1234.5678F), S_OK);
  EXPECT_EQ(depth(), 1234.568);
  ASSERT_EQ(table_->SetColumnFloat(2, -0.1F), S_OK);
  EXPECT_EQ(depth(), -0.1);
  ASSERT_EQ(table_->SetColumnFloat(2, 123456.7F), S_OK);
  EXPECT_EQ(depth(), static_cast<double>(123456.7F));
  ASSERT_EQ(table_->SetColumnFloat(2, -0.0F), S_OK);
  EXPECT_EQ(depth(), 0.0);
  float plain = 0;
  ASSERT_EQ(table_->SetColumnFloat(2, 0.1F), S_OK);
  EXPECT_EQ(table_->GetColumnAsFloat(2, &plain), S_OK);
  EXPECT_EQ(plain, 0.1F);
}

TEST_F(Columns, AFloatForADoubleColumnIsTidied) {
  open_one();
  ASSERT_EQ(set(2, ovfile::variant(0.1F)), S_OK);
  EXPECT_EQ(depth(), 0.1);
  ASSERT_EQ(table_->SetColumnFloat(2, 0.1F), S_OK);
  EXPECT_EQ(depth(), static_cast<double>(0.1F));  // the typed setter widens plainly
}

TEST_F(Columns, ValuesComeAsTheTypeOfTheirColumn) {
  open_one();
  EXPECT_EQ(column(2).type(), VT_R8);
  EXPECT_EQ(column(1).type(), VT_BSTR);
  EXPECT_EQ(ovfile::to_utf8(column(1).view()), "none    ");
  EXPECT_EQ(column(3).number(), 2.75);
  EXPECT_EQ(column_text(2), "1");
  double value = 0;
  EXPECT_EQ(table_->GetColumnAsDouble(1, &value), E_FAIL);
  ASSERT_EQ(set_text(1, "12.5"), S_OK);
  EXPECT_EQ(table_->GetColumnAsDouble(1, &value), S_OK);
  EXPECT_EQ(value, 12.5);
  open_one(false);
  EXPECT_EQ(column(2).type(), VT_R4);
}

TEST_F(Columns, TextIsTrimmedAndCut) {
  open_one();
  EXPECT_EQ(set_text(1, "B1-001  \t "), S_OK);
  EXPECT_EQ(column_text(1), "B1-001  ");
  EXPECT_EQ(set_text(1, "123456789"), S_FALSE);
  EXPECT_EQ(column_text(1), "12345678");
  EXPECT_EQ(set_text(1, "12345678   "), S_OK);
  EXPECT_EQ(set_text(1, " \t "), S_OK);
  EXPECT_EQ(column_text(1), "        ");
  EXPECT_EQ(set(1, ovfile::variant(text_of(std::string("abcdefghij")))), S_FALSE);
  EXPECT_EQ(column_text(1), "abcdefgh");
}

TEST_F(Columns, TheWidthIsTheSameInBothPrecisions) {
  for (const bool is_double : {false, true}) {
    open_one(is_double);
    EXPECT_EQ(set_text(1, "12345678"), S_OK);
    EXPECT_EQ(set_text(1, "123456789"), S_FALSE);
  }
}

TEST_F(Columns, ATextForANumberIsConvertedWhole) {
  open_one();
  EXPECT_EQ(set_text(2, "123456789.25 "), S_OK);
  EXPECT_EQ(depth(), 123456789.25);
  EXPECT_REPORT(set_text(2, "12 m"), "Error: Invalid number");
  EXPECT_EQ(depth(), 123456789.25);
}

TEST_F(Columns, NumbersOfEveryTypeAreTaken) {
  open_one();
  EXPECT_EQ(set(2, ovfile::variant(LONG{-5})), S_OK);
  EXPECT_EQ(depth(), -5);
  EXPECT_EQ(set(2, ovfile::variant(0.25)), S_OK);
  EXPECT_EQ(depth(), 0.25);
  EXPECT_EQ(set(1, ovfile::variant(12.5)), S_OK);
  EXPECT_EQ(column_text(1), "12.5    ");
}

TEST_F(Columns, ByReferenceValuesAreResolved) {
  open_one();
  double number = 3.5;
  VARIANT reference;
  VariantInit(&reference);
  reference.vt = VT_R8 | VT_BYREF;
  reference.pdblVal = &number;
  EXPECT_EQ(table_->SetColumn(2, reference), S_OK);
  EXPECT_EQ(depth(), 3.5);
  ovfile::variant text(text_of(std::string("by reference")));
  VARIANT outer;
  VariantInit(&outer);
  outer.vt = VT_VARIANT | VT_BYREF;
  outer.pvarVal = const_cast<VARIANT*>(&text.get());
  EXPECT_EQ(table_->SetColumn(1, outer), S_FALSE);
  EXPECT_EQ(column_text(1), "by refer");
}

TEST_F(Columns, AnEmptyValueIsZeroOrBlanks) {
  open_one();
  EXPECT_EQ(set(2, ovfile::variant()), S_OK);
  EXPECT_EQ(depth(), 0);
  EXPECT_EQ(set(1, ovfile::variant()), S_OK);
  EXPECT_EQ(column_text(1), "        ");
}

TEST_F(Columns, ColumnsThatAreNotThereAreReported) {
  open_one();
  for (const LONG index : {0, -1, 4, 1000}) {
    ovfile::variant value;
    double number = 5;
    float small = 5;
    ovfile::text text;
    EXPECT_REPORT(table_->GetColumn(index, value.out()), no_field);
    EXPECT_EQ(value.type(), VT_EMPTY);
    EXPECT_REPORT(table_->GetColumnAsDouble(index, &number), no_field);
    EXPECT_EQ(number, 0);
    EXPECT_REPORT(table_->GetColumnAsFloat(index, &small), no_field);
    EXPECT_REPORT(table_->GetColumnAsString(index, text.out()), no_field);
    EXPECT_REPORT(set(index, ovfile::variant(1.0)), no_field);
    EXPECT_REPORT(table_->SetColumnDouble(index, 1), no_field);
    EXPECT_REPORT(table_->SetColumnFloat(index, 1), no_field);
    EXPECT_REPORT(set_text(index, "1"), no_field);
  }
}

TEST_F(Columns, WithoutARowEachMethodHasItsRefusal) {
  open_one();
  ASSERT_EQ(table_->GetRowAt(0), S_FALSE);
  ovfile::variant value;
  double number = 0;
  float small = 0;
  ovfile::text text;
  LONG record[64] = {};
  EXPECT_REPORT(table_->GetColumn(1, value.out()), "GetColumn failed, current row is not valid");
  EXPECT_REPORT(table_->GetColumnAsDouble(1, &number), "GetColumnAsDouble failed, current row is not valid");
  EXPECT_REPORT(table_->GetColumnAsFloat(1, &small), "GetColumnAsFloat failed, current row is not valid");
  EXPECT_REPORT(table_->GetColumnAsString(1, text.out()),
                "GetColumnAsString failed, current row is not valid");
  const char* refused = "SetColumn failed, current row is not valid";
  EXPECT_REPORT(set(1, ovfile::variant(1.0)), refused);
  EXPECT_REPORT(table_->SetColumnDouble(1, 1), refused);
  EXPECT_REPORT(table_->SetColumnFloat(1, 1), refused);
  EXPECT_REPORT(set_text(1, "1"), refused);
  EXPECT_REPORT(table_->ReadOVRecord(record), "ReadOVRecord failed, current row is not valid");
  EXPECT_REPORT(table_->WriteOVRecord(record), "WriteOVRecord failed, current row is not valid");
}

TEST_F(Columns, AnImplicitNumberIsNotSetWithoutARow) {
  for (const bool is_double : {true, false}) {
    SCOPED_TRACE(is_double);
    ASSERT_EQ(create(holes(is_double)), S_OK);
    EXPECT_EQ(table_->SetColumnDouble(3, 3.5), E_FAIL);
    ovfile::pointer<IOvSchema> schema;
    ovfile::variant value;
    ASSERT_EQ(table_->get_Schema(schema.out()), S_OK);
    EXPECT_EQ(schema->GetFieldDefault(3, value.out()), S_OK);
    EXPECT_EQ(value.number(), 2.75);
  }
}

TEST_F(Columns, AReadOnlyTableTakesNoValues) {
  make_rows(1);
  ASSERT_EQ(open(1), S_OK);
  const char* refused = "SetColumn failed, file is open in read-only mode";
  EXPECT_REPORT(set(1, ovfile::variant(1.0)), refused);
  EXPECT_REPORT(table_->SetColumnDouble(1, 1), refused);
  EXPECT_REPORT(table_->SetColumnFloat(1, 1), refused);
  EXPECT_REPORT(set_text(1, "1"), refused);
}

TEST_F(Columns, ARecordIsCopiedAsItStandsInTheFile) {
  make_rows(2, false);
  ASSERT_EQ(open(), S_OK);
  LONG record[3] = {};
  ASSERT_EQ(table_->ReadOVRecord(record), S_OK);
  EXPECT_EQ(std::memcmp(record, "none    ", 8), 0);
  EXPECT_EQ(record[2], 0x3F800000);  // 1.0
  ASSERT_EQ(table_->GetNextRow(), S_OK);
  record[2] = 0x40A00000;  // 5.0
  ASSERT_EQ(table_->WriteOVRecord(record), S_OK);
  EXPECT_EQ(depth(), 5);
  EXPECT_EQ(table_->ReadOVRecord(nullptr), E_POINTER);
  EXPECT_EQ(table_->WriteOVRecord(nullptr), E_POINTER);
}

TEST_F(Columns, WritingARecordDoesNotAskWhetherTheTableIsReadOnly) {
  make_rows(1, false);
  const ovtest::bytes before = content();
  ASSERT_EQ(open(1), S_OK);
  LONG record[3] = {};
  EXPECT_EQ(table_->WriteOVRecord(record), S_OK);
  EXPECT_EQ(table_->Close(), S_OK);
  EXPECT_EQ(content(), before);
}

class SiblingFace : public TableHost {
 protected:
  void open_two() {
    make_rows(2);
    ASSERT_EQ(open(), S_OK);
    sibling_ = table_.query<IZuCommonDataTable>();
    ASSERT_TRUE(sibling_);
  }
  ovfile::pointer<IZuCommonDataTable> sibling_;
};

TEST_F(SiblingFace, ForwardsToTheSameTable) {
  open_two();
  LONG rows = 0;
  EXPECT_EQ(sibling_->GetRowCount(&rows), S_OK);
  EXPECT_EQ(rows, 2);
  EXPECT_EQ(sibling_->GetNextRow(), S_OK);
  double value = 0;
  EXPECT_EQ(sibling_->GetColumnAsDouble(2, &value), S_OK);
  EXPECT_EQ(value, 2);
  EXPECT_EQ(sibling_->SetColumnDouble(2, 8), S_OK);
  EXPECT_EQ(depth(), 8);
  EXPECT_EQ(sibling_->DeleteRow(1), E_NOTIMPL);
  LONG current = 0;
  EXPECT_EQ(sibling_->GetCurrentRow(&current), S_OK);
  EXPECT_EQ(current, 2);
}

TEST_F(SiblingFace, HandsOutTheSchemaThroughItsSiblingInterface) {
  open_two();
  ovfile::pointer<IZuCommonDataSchema> schema;
  EXPECT_EQ(sibling_->Reserved6(schema.out()), S_OK);
  ASSERT_TRUE(schema);
  LONG count = 0;
  EXPECT_EQ(schema->get_FieldCount(&count), S_OK);
  EXPECT_EQ(count, 3);
  ASSERT_EQ(table_->Close(), S_OK);
  EXPECT_EQ(sibling_->Reserved6(schema.out()), S_OK);
  EXPECT_FALSE(schema);
}

TEST_F(SiblingFace, ReservedPositionsDoNothing) {
  open_two();
  EXPECT_EQ(sibling_->Reserved1(), E_NOTIMPL);
  EXPECT_EQ(sibling_->Reserved7(), S_FALSE);
  EXPECT_EQ(sibling_->Reserved29(), E_NOTIMPL);
}

TEST_F(SiblingFace, ReadingARecordThereWritesNoMemoryOfTheCaller) {
  open_two();
  LONG record[3] = {1, 2, 3};
  EXPECT_EQ(sibling_->ReadOVRecord(record), S_OK);
  EXPECT_EQ(record[0], 1);
  EXPECT_EQ(sibling_->ReadOVRecord(nullptr), S_OK);
  ASSERT_EQ(table_->GetRowAt(0), S_FALSE);
  EXPECT_REPORT(sibling_->ReadOVRecord(record), "ReadOVRecord failed, current row is not valid");
}

}  // namespace
