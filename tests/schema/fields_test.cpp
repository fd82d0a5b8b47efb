// One field at a time: names, types, defaults, sizes, look-up.
#include "schema/schema_test.h"

namespace ovtest {
namespace {

class schema_field_access : public schema_test {
 protected:
  void SetUp() override {
    schema_test::SetUp();
    ASSERT_EQ(S_OK, schema_->put_FieldCount(4));
    ASSERT_EQ(S_OK, schema_->SetFieldType(1, ovColumnSingle));
    ASSERT_EQ(S_OK, schema_->SetFieldType(2, ovColumnString));
    ASSERT_EQ(S_OK, set_name(3, "untyped"));
  }
  HRESULT set_default(LONG index, const VARIANT& value) { return schema_->SetFieldDefault(index, value); }
};

VARIANT long_value(LONG number) {
  VARIANT value{};
  value.vt = VT_I4;
  value.lVal = number;
  return value;
}

VARIANT reference(VARTYPE type, void* to) {
  VARIANT value{};
  value.vt = static_cast<VARTYPE>(VT_BYREF | type);
  value.byref = to;
  return value;
}

TEST_F(schema_field_access, a_new_field_is_empty) {
  EXPECT_EQ("", name(1));
  EXPECT_EQ(0, offset(3));
  EXPECT_EQ(0, size(3));
  EXPECT_EQ(1, type(3)) << "a field without a type reads as a number";
  EXPECT_EQ("", text_default(3)) << "but its default as a text";
  EXPECT_EQ(0.0, number_default(1));
}

TEST_F(schema_field_access, types_follow_the_precision) {
  EXPECT_EQ(1, type(1));
  EXPECT_EQ(3, type(2));
  ASSERT_EQ(S_OK, schema_->put_DoublePrecision(VARIANT_TRUE));
  EXPECT_EQ(2, type(1));
  EXPECT_EQ(3, type(2));
  EXPECT_EQ(2, type(3));
  ASSERT_EQ(S_OK, schema_->put_DoublePrecision(VARIANT_FALSE));
  EXPECT_EQ(1, type(1));
}

TEST_F(schema_field_access, unknown_types_are_ignored) {
  for (const LONG code : {0, 4, -1, 100}) {
    EXPECT_EQ(S_OK, schema_->SetFieldType(2, static_cast<OvColumnType>(code)));
    EXPECT_EQ(3, type(2));
  }
  EXPECT_EQ(S_OK, schema_->SetFieldType(2, ovColumnDouble));
  EXPECT_EQ(1, type(2)) << "a number is a number, the schema says of how many bytes";
}

TEST_F(schema_field_access, a_float_default_is_tidied) {
  EXPECT_EQ(S_OK, set_default(1, variant(0.1F).get()));
  EXPECT_EQ(0.1, number_default(1));
  EXPECT_EQ(S_OK, set_default(1, variant(123456.7F).get()));
  EXPECT_EQ(static_cast<double>(123456.7F), number_default(1));
  EXPECT_EQ(S_OK, set_default(1, variant(-1.0e30F).get()));
  EXPECT_EQ(-1.0000000150474662e30, number_default(1));
}

TEST_F(schema_field_access, a_double_default_is_kept) {
  EXPECT_EQ(S_OK, set_default(1, variant(0.1000000000000001).get()));
  EXPECT_EQ(0.1000000000000001, number_default(1));
}

TEST_F(schema_field_access, other_defaults_of_a_number_are_ignored) {
  ASSERT_EQ(S_OK, set_default(1, variant(2.5).get()));
  EXPECT_EQ(S_OK, set_default(1, long_value(7)));
  EXPECT_EQ(S_OK, set_default(1, text_variant("7").get()));
  EXPECT_EQ(S_OK, set_default(1, VARIANT{}));
  EXPECT_EQ(2.5, number_default(1));
}

TEST_F(schema_field_access, defaults_by_reference_are_resolved) {
  float single = 0.1F;
  EXPECT_EQ(S_OK, set_default(1, reference(VT_R4, &single)));
  EXPECT_EQ(0.1, number_default(1));
  variant held(1.5);
  EXPECT_EQ(S_OK, set_default(1, reference(VT_VARIANT, const_cast<VARIANT*>(&held.get()))));
  EXPECT_EQ(1.5, number_default(1));
  const bstr text("lode");
  BSTR pointer = text.get();
  EXPECT_EQ(S_OK, set_default(2, reference(VT_BSTR, &pointer)));
  EXPECT_EQ("lode", text_default(2));
}

TEST_F(schema_field_access, a_text_default_is_stored_as_it_is) {
  EXPECT_EQ(S_OK, set_default(2, text_variant("a longer text than the field").get()));
  EXPECT_EQ("a longer text than the field", text_default(2));
  VARIANT none{};
  none.vt = VT_BSTR;
  EXPECT_EQ(S_OK, set_default(2, none));
  EXPECT_EQ("", text_default(2)) << "a null text is an empty one";
}

TEST_F(schema_field_access, other_defaults_of_a_text_are_changed_to_text) {
  EXPECT_EQ(S_OK, set_default(2, long_value(42)));
  EXPECT_EQ("42", text_default(2));
  EXPECT_EQ(S_OK, set_default(2, variant(0.5).get()));
  EXPECT_EQ("0.5", text_default(2));
  EXPECT_EQ(S_OK, set_default(3, variant(0.25).get()));
  EXPECT_EQ("0.25", text_default(3)) << "also where no type was set";
}

TEST_F(schema_field_access, what_is_no_text_leaves_the_default) {
  ASSERT_EQ(S_OK, set_default(2, text_variant("kept").get()));
  VARIANT null{};
  null.vt = VT_NULL;
  EXPECT_EQ(S_OK, set_default(2, null));
  EXPECT_EQ("kept", text_default(2));
}

TEST_F(schema_field_access, a_default_set_before_the_type_is_the_texts) {
  ASSERT_EQ(S_OK, set_default(4, variant(1.5).get()));
  ASSERT_EQ(S_OK, schema_->SetFieldType(4, ovColumnSingle));
  EXPECT_EQ(0.0, number_default(4));
  ASSERT_EQ(S_OK, schema_->SetFieldType(4, ovColumnString));
  EXPECT_EQ("1.5", text_default(4));
}

TEST_F(schema_field_access, texts_pass_through_the_ansi_code_page) {
  EXPECT_EQ(S_OK, set_name(1, "Cu\xE2\x82\xAC"));  // the euro sign has a place
  EXPECT_EQ("Cu\xE2\x82\xAC", name(1));
  EXPECT_EQ(S_OK, set_name(1, "\xCE\xB1-phase"));  // alpha has none
  EXPECT_EQ("?-phase", name(1));
  EXPECT_EQ(S_OK, set_default(2, text_variant("d\xC3\xA9j\xC3\xA0").get()));
  EXPECT_EQ("d\xC3\xA9j\xC3\xA0", text_default(2));
}

TEST_F(schema_field_access, names_are_not_checked) {
  const char* odd = "  a name of more than twenty-four characters, with blanks  ";
  EXPECT_EQ(S_OK, set_name(1, odd));
  EXPECT_EQ(odd, name(1));
  EXPECT_EQ(S_OK, schema_->SetFieldName(1, nullptr));
  EXPECT_EQ("", name(1));
}

TEST_F(schema_field_access, sizes_and_offsets_are_not_checked) {
  EXPECT_EQ(S_OK, schema_->SetFieldSize(1, -5));
  EXPECT_EQ(-5, size(1));
  EXPECT_EQ(-5, characters(1));
  ASSERT_EQ(S_OK, schema_->put_DoublePrecisionFlag(2));
  EXPECT_EQ(-2, characters(1)) << "halved towards zero";
  EXPECT_EQ(S_OK, schema_->SetFieldOffset(1, -1));
  EXPECT_EQ(1, implicit(1)) << "1, not -1";
  EXPECT_EQ(S_OK, schema_->SetFieldOffset(1, -2));
  EXPECT_EQ(0, implicit(1));
  EXPECT_EQ(-2, offset(1));
}

TEST_F(schema_field_access, look_up_is_exact_and_finds_the_first) {
  ASSERT_EQ(S_OK, set_name(1, "CU"));
  ASSERT_EQ(S_OK, set_name(2, "Cu"));
  ASSERT_EQ(S_OK, set_name(3, "CU"));
  LONG index = 9;
  EXPECT_EQ(S_OK, schema_->GetFieldIndex(bstr("CU").get(), &index));
  EXPECT_EQ(1, index);
  EXPECT_EQ(S_OK, schema_->GetFieldIndex(bstr("Cu").get(), &index));
  EXPECT_EQ(2, index);
  for (const char* missing : {"cu", "CU ", "C", "CUX", ""}) {
    EXPECT_EQ(S_FALSE, schema_->GetFieldIndex(bstr(missing).get(), &index)) << missing;
    EXPECT_EQ(-1, index);
  }
}

TEST_F(schema_field_access, look_up_sees_fields_only) {
  LONG index = 9;
  EXPECT_EQ(S_OK, schema_->GetFieldIndex(nullptr, &index)) << "the two fields without a name";
  EXPECT_EQ(1, index);
  ASSERT_EQ(S_OK, set_name(1, "A"));
  ASSERT_EQ(S_OK, set_name(2, "B"));
  EXPECT_EQ(S_FALSE, schema_->GetFieldIndex(nullptr, &index)) << "a reserved slot has no name either";
}

}  // namespace
}  // namespace ovtest
