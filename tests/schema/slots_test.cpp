// Reserved slots, indexes, and fields made by setting them.
#include "schema/schema_test.h"

namespace ovtest {
namespace {

class schema_slots : public schema_test {
 protected:
  /// What every getter answers for an index.
  void expect_getters(LONG index, HRESULT expected) {
    SCOPED_TRACE(index);
    variant value;
    bstr text;
    LONG number = 5;
    OvColumnType kind = ovColumnString;
    VARIANT_BOOL truth = 5;
    EXPECT_EQ(expected, schema_->GetFieldDefault(index, value.out()));
    EXPECT_EQ(expected, schema_->GetFieldName(index, text.out()));
    EXPECT_EQ(expected, schema_->GetFieldOffset(index, &number));
    EXPECT_EQ(0, number) << "cleared";
    EXPECT_EQ(expected, schema_->GetFieldSize(index, &number));
    EXPECT_EQ(expected, schema_->GetFieldSizeChars(index, &number));
    EXPECT_EQ(expected, schema_->IsFieldImplicit(index, &truth));
    EXPECT_EQ(0, truth);
    EXPECT_EQ(expected, schema_->GetFieldType(index, &kind));
    EXPECT_EQ(SUCCEEDED(expected) ? 1 : 0, kind);
  }
  /// What every setter answers for an index.
  void expect_setters(LONG index, HRESULT expected) {
    SCOPED_TRACE(index);
    EXPECT_EQ(expected, set_name(index, "N"));
    EXPECT_EQ(expected, schema_->SetFieldType(index, ovColumnSingle));
    EXPECT_EQ(expected, schema_->SetFieldDefault(index, variant(1.0).get()));
    EXPECT_EQ(expected, schema_->SetFieldOffset(index, 1));
    EXPECT_EQ(expected, schema_->SetFieldSize(index, 4));
  }
};

TEST_F(schema_slots, an_empty_schema_has_none) {
  EXPECT_EQ(0, count());
  for (const LONG index : {-2147483647 - 1, -1, 0, 1, 2, 2147483647}) {
    expect_getters(index, E_FAIL);
    expect_setters(index, E_FAIL);
  }
  EXPECT_EQ(0, count());
}

TEST_F(schema_slots, putting_the_count_reserves_and_setting_in_order_makes_fields) {
  EXPECT_EQ(S_OK, schema_->put_FieldCount(3));
  EXPECT_EQ(0, count());
  EXPECT_EQ(S_OK, set_name(1, "X"));
  EXPECT_EQ(E_FAIL, set_name(3, "Z"));
  EXPECT_EQ(S_OK, set_name(2, "Y"));
  EXPECT_EQ(2, count());
  EXPECT_EQ(S_OK, set_name(3, "Z"));
  EXPECT_EQ(E_FAIL, set_name(4, "W")) << "no slot is left";
  EXPECT_EQ(3, count());
  EXPECT_EQ("Z", name(3));
}

TEST_F(schema_slots, putting_the_count_never_takes_away) {
  ASSERT_EQ(S_OK, schema_->put_FieldCount(2));
  ASSERT_EQ(S_OK, set_name(1, "X"));
  ASSERT_EQ(S_OK, set_name(2, "Y"));
  for (const LONG fewer : {1, 0, -1, -2147483647 - 1}) EXPECT_EQ(S_OK, schema_->put_FieldCount(fewer));
  EXPECT_EQ(2, count());
  expect_getters(3, E_FAIL);
}

TEST_F(schema_slots, a_reserved_slot_reads_as_an_empty_field) {
  ASSERT_EQ(S_OK, schema_->put_FieldCount(2));
  expect_getters(2, S_OK);
  expect_getters(3, E_FAIL);
  EXPECT_EQ("", name(2));
  EXPECT_EQ(0, size(2));
  EXPECT_EQ("", text_default(2));
  EXPECT_EQ(0, count()) << "reading makes no field";
}

TEST_F(schema_slots, billions_may_be_reserved) {
  EXPECT_EQ(S_OK, schema_->put_FieldCount(2147483647));
  expect_getters(2147483647, S_OK);
  EXPECT_EQ(E_FAIL, set_name(2147483647, "far"));
  EXPECT_EQ(S_OK, set_name(1, "near"));
  EXPECT_EQ(1, count());
}

TEST_F(schema_slots, every_setter_makes_the_next_field) {
  ASSERT_EQ(S_OK, schema_->put_FieldCount(5));
  EXPECT_EQ(S_OK, set_name(1, "A"));
  EXPECT_EQ(S_OK, schema_->SetFieldType(2, ovColumnString));
  EXPECT_EQ(S_OK, schema_->SetFieldOffset(3, 7));
  EXPECT_EQ(S_OK, schema_->SetFieldSize(4, 12));
  EXPECT_EQ(S_OK, schema_->SetFieldDefault(5, text_variant("x").get()));
  EXPECT_EQ(5, count());
  EXPECT_EQ("A", name(1));
  EXPECT_EQ(3, type(2));
  EXPECT_EQ(7, offset(3));
  EXPECT_EQ(12, size(4));
  EXPECT_EQ("x", text_default(5));
}

TEST_F(schema_slots, the_field_behind_the_last_needs_a_slot) {
  ASSERT_EQ(S_OK, add_number("A"));
  expect_setters(2, E_FAIL);
  ASSERT_EQ(S_OK, schema_->put_FieldCount(2));
  EXPECT_EQ(S_OK, set_name(2, "B"));
}

TEST_F(schema_slots, null_out_pointers_are_refused) {
  ASSERT_EQ(S_OK, add_number("A"));
  EXPECT_EQ(E_POINTER, schema_->GetFieldDefault(1, nullptr));
  EXPECT_EQ(E_POINTER, schema_->GetFieldName(1, nullptr));
  EXPECT_EQ(E_POINTER, schema_->GetFieldOffset(1, nullptr));
  EXPECT_EQ(E_POINTER, schema_->GetFieldSize(1, nullptr));
  EXPECT_EQ(E_POINTER, schema_->GetFieldSizeChars(1, nullptr));
  EXPECT_EQ(E_POINTER, schema_->GetFieldType(1, nullptr));
  EXPECT_EQ(E_POINTER, schema_->IsFieldImplicit(1, nullptr));
  EXPECT_EQ(E_POINTER, schema_->GetFieldIndex(bstr("A").get(), nullptr));
  EXPECT_EQ(E_POINTER, schema_->get_FieldCount(nullptr));
  EXPECT_EQ(E_POINTER, schema_->GetFieldName(9, nullptr)) << "before the index is looked at";
}

}  // namespace
}  // namespace ovtest
