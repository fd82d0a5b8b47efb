// Appending whole columns.
#include "schema/schema_test.h"

namespace ovtest {
namespace {

class schema_columns : public schema_test {};

TEST_F(schema_columns, a_number_in_single_precision) {
  EXPECT_EQ(S_OK, add_number("XC", 1.5));
  EXPECT_EQ(1, count());
  EXPECT_EQ("XC", name(1));
  EXPECT_EQ(1, type(1));
  EXPECT_EQ(4, size(1));
  EXPECT_EQ(4, characters(1));
  EXPECT_EQ(0, offset(1));
  EXPECT_EQ(0, implicit(1));
  EXPECT_EQ(1.5, number_default(1));
}

TEST_F(schema_columns, a_number_in_double_precision) {
  ASSERT_EQ(S_OK, schema_->put_DoublePrecision(1));
  EXPECT_EQ(S_OK, add_number("XC", 0.1));
  EXPECT_EQ(2, type(1));
  EXPECT_EQ(8, size(1));
  EXPECT_EQ(4, characters(1));
  EXPECT_EQ(0.1, number_default(1));
}

TEST_F(schema_columns, an_implicit_column_has_no_place_in_the_record) {
  EXPECT_EQ(S_OK, add_number("XMORIG", 100.0, 1));
  EXPECT_EQ(S_OK, add_text("LODE", 4, "ORE", -5));
  EXPECT_EQ(-1, offset(1));
  EXPECT_EQ(1, implicit(1));
  EXPECT_EQ(-1, offset(2)) << "anything but 0 is implicit";
}

TEST_F(schema_columns, a_text_in_single_precision_takes_whole_words) {
  EXPECT_EQ(S_OK, add_text("ID", 5, "AB"));
  EXPECT_EQ(3, type(1));
  EXPECT_EQ(8, size(1));
  EXPECT_EQ(8, characters(1));
  EXPECT_EQ("AB      ", text_default(1));
}

TEST_F(schema_columns, a_text_in_double_precision_takes_twice_the_bytes) {
  ASSERT_EQ(S_OK, schema_->put_DoublePrecision(VARIANT_TRUE));
  EXPECT_EQ(S_OK, add_text("ID", 5, "AB"));
  EXPECT_EQ(16, size(1));
  EXPECT_EQ(8, characters(1));
  EXPECT_EQ("AB      ", text_default(1));
}

TEST_F(schema_columns, an_odd_precision_flag_counts_for_numbers_and_not_for_texts) {
  ASSERT_EQ(S_OK, schema_->put_DoublePrecisionFlag(2));
  EXPECT_EQ(S_OK, add_number("N"));
  EXPECT_EQ(S_OK, add_text("T", 8));
  EXPECT_EQ(2, type(1));
  EXPECT_EQ(8, size(1));
  EXPECT_EQ(8, size(2));
  EXPECT_EQ(4, characters(2));
}

TEST_F(schema_columns, a_default_is_cut_to_the_width) {
  EXPECT_EQ(S_OK, add_text("T", 3, "ABCDEFG"));
  EXPECT_EQ("ABCD", text_default(1));
  EXPECT_EQ(S_OK, schema_->AddStringColumn(bstr("U").get(), 4, nullptr, 0));
  EXPECT_EQ("    ", text_default(2));
}

TEST_F(schema_columns, widths_down_to_minus_six_are_no_words) {
  for (const LONG width : {0, -1, -3, -4, -6}) EXPECT_EQ(S_OK, add_text("T", width, "AB")) << width;
  EXPECT_EQ(5, count());
  for (LONG index = 1; index <= 5; ++index) {
    EXPECT_EQ(0, size(index));
    EXPECT_EQ("", text_default(index));
  }
}

TEST_F(schema_columns, impossible_widths_are_refused) {
  for (const LONG width : {-7, -8, -2147483647 - 1, 1048577, 2147483647}) {
    EXPECT_EQ(E_FAIL, add_text("T", width)) << width;
  }
  EXPECT_EQ(0, count());
  EXPECT_EQ(S_OK, add_text("T", 1048576));
  EXPECT_EQ(1048576, size(1));
}

TEST_F(schema_columns, there_may_be_256) {
  for (int i = 0; i < 255; ++i) ASSERT_EQ(S_OK, add_number("N")) << i;
  EXPECT_EQ(S_OK, add_text("T", 4));
  EXPECT_EQ(256, count());
  EXPECT_EQ(E_FAIL, add_number("N"));
  EXPECT_EQ(E_FAIL, add_text("T", 4));
  EXPECT_EQ(E_FAIL, schema_->AddColumn(bstr("C").get(), ovColumnSingle));
  EXPECT_EQ(256, count());
  EXPECT_EQ(E_FAIL, set_name(257, "more")) << "a refusal reserves nothing";
}

TEST_F(schema_columns, follow_fields_made_by_setting_them) {
  ASSERT_EQ(S_OK, schema_->put_FieldCount(10));
  ASSERT_EQ(S_OK, set_name(1, "A"));
  EXPECT_EQ(S_OK, add_number("B"));
  EXPECT_EQ(2, count());
  EXPECT_EQ("B", name(2));
  EXPECT_EQ(S_OK, set_name(3, "C")) << "the slots reserved before are still there";
}

TEST_F(schema_columns, by_type_alone) {
  EXPECT_EQ(S_OK, schema_->AddColumn(bstr("A").get(), ovColumnSingle));
  EXPECT_EQ(S_OK, schema_->AddColumn(bstr("B").get(), ovColumnDouble));
  EXPECT_EQ(S_OK, schema_->AddColumn(bstr("C").get(), ovColumnString));
  EXPECT_EQ(E_FAIL, schema_->AddColumn(bstr("D").get(), static_cast<OvColumnType>(0)));
  EXPECT_EQ(E_FAIL, schema_->AddColumn(bstr("D").get(), static_cast<OvColumnType>(4)));
  EXPECT_EQ(3, count());
  EXPECT_EQ(1, type(1));
  EXPECT_EQ(1, type(2)) << "the schema's precision holds";
  EXPECT_EQ(8, size(3));
  EXPECT_EQ("        ", text_default(3));
  EXPECT_EQ(0.0, number_default(2));
  EXPECT_EQ(0, offset(3));
}

TEST_F(schema_columns, by_type_and_length_behind_the_published_methods) {
  auto& operations = static_cast<ovf::schema_operations&>(*schema_.get());
  EXPECT_EQ(S_OK, operations.AddColumnOfLength(bstr("T").get(), ovColumnString, 13));
  EXPECT_EQ(S_OK, operations.AddColumnOfLength(bstr("N").get(), ovColumnDouble, 13));
  EXPECT_EQ(S_OK, operations.AddColumnOfUsualLength(bstr("U").get(), ovColumnString));
  EXPECT_EQ(E_FAIL, operations.AddColumnOfLength(bstr("X").get(), static_cast<OvColumnType>(5), 4));
  EXPECT_EQ(16, size(1));
  EXPECT_EQ(4, size(2));
  EXPECT_EQ(8, size(3));
}

TEST_F(schema_columns, names_may_come_twice) {
  EXPECT_EQ(S_OK, add_number("A"));
  EXPECT_EQ(S_OK, add_number("A"));
  EXPECT_EQ(2, count());
}

}  // namespace
}  // namespace ovtest
