// The read-only latch, description, precision and special values; filling; what is not there yet.
#include "schema/schema_test.h"

namespace ovtest {
namespace {

class schema_properties : public schema_test {
 protected:
  VARIANT_BOOL read_only() {
    VARIANT_BOOL value = 7;
    EXPECT_EQ(S_OK, schema_->get_ReadOnly(&value));
    return value;
  }
  VARIANT_BOOL precision_flag() {
    VARIANT_BOOL flag = 7;
    VARIANT_BOOL property = 7;
    EXPECT_EQ(S_OK, schema_->get_DoublePrecisionFlag(&flag));
    EXPECT_EQ(S_OK, schema_->get_DoublePrecision(&property));
    EXPECT_EQ(flag, property);
    return flag;
  }
  std::string description() {
    bstr text;
    EXPECT_EQ(S_OK, schema_->get_Description(text.out()));
    return text.utf8();
  }
  using special_getter = HRESULT (STDMETHODCALLTYPE IOvSchema::*)(VARIANT*);
  double special(special_getter getter) {
    variant value;
    EXPECT_EQ(S_OK, (schema_.get()->*getter)(value.out()));
    EXPECT_EQ(VT_R8, value.type());
    return value.number();
  }
};

TEST_F(schema_properties, the_latch_reads_1_and_stays) {
  EXPECT_EQ(0, read_only());
  EXPECT_EQ(S_OK, schema_->put_ReadOnly(VARIANT_FALSE));
  EXPECT_EQ(0, read_only());
  EXPECT_EQ(S_OK, schema_->put_ReadOnly(5));
  EXPECT_EQ(1, read_only()) << "1, not -1";
  EXPECT_EQ(E_FAIL, schema_->put_ReadOnly(VARIANT_FALSE));
  EXPECT_EQ(E_FAIL, schema_->put_ReadOnly(VARIANT_TRUE));
  EXPECT_EQ(1, read_only());
  EXPECT_EQ(E_POINTER, schema_->get_ReadOnly(nullptr));
}

TEST_F(schema_properties, the_latch_keeps_names_types_and_the_list) {
  ASSERT_EQ(S_OK, add_number("A", 1.0));
  ASSERT_EQ(S_OK, schema_->put_ReadOnly(VARIANT_TRUE));
  EXPECT_EQ(E_FAIL, set_name(1, "B"));
  EXPECT_EQ(E_FAIL, schema_->SetFieldType(1, ovColumnString));
  EXPECT_EQ(E_FAIL, schema_->put_FieldCount(5));
  EXPECT_EQ(E_FAIL, add_number("B"));
  EXPECT_EQ(E_FAIL, add_text("B", 4));
  EXPECT_EQ(E_FAIL, schema_->AddColumn(bstr("B").get(), ovColumnSingle));
  EXPECT_EQ(1, count());
  EXPECT_EQ("A", name(1));
  EXPECT_EQ(1, type(1));
}

TEST_F(schema_properties, the_latch_leaves_values_open) {
  ASSERT_EQ(S_OK, add_number("A", 1.0));
  ASSERT_EQ(S_OK, schema_->put_ReadOnly(VARIANT_TRUE));
  EXPECT_EQ(S_OK, schema_->SetFieldDefault(1, variant(2.0).get()));
  EXPECT_EQ(S_OK, schema_->SetFieldOffset(1, -1));
  EXPECT_EQ(S_OK, schema_->SetFieldSize(1, 12));
  EXPECT_EQ(S_OK, schema_->put_Description(bstr("new").get()));
  EXPECT_EQ(S_OK, schema_->put_DoublePrecision(VARIANT_TRUE));
  EXPECT_EQ(S_OK, schema_->put_DoublePrecisionFlag(0));
  EXPECT_EQ(2.0, number_default(1));
  EXPECT_EQ(-1, offset(1));
  EXPECT_EQ(12, size(1));
  EXPECT_EQ("new", description());
}

TEST_F(schema_properties, the_description_is_kept_in_unicode) {
  EXPECT_EQ("", description());
  const char* greek = "\xCE\xB1 \xE2\x80\x94 \xF0\x9F\xAA\xA8";
  EXPECT_EQ(S_OK, schema_->put_Description(bstr(greek).get()));
  EXPECT_EQ(greek, description());
  EXPECT_EQ(S_OK, schema_->put_Description(nullptr));
  EXPECT_EQ("", description());
  EXPECT_EQ(E_POINTER, schema_->get_Description(nullptr));
}

TEST_F(schema_properties, the_precision_flag_is_stored_as_given_and_read_as_a_truth) {
  EXPECT_EQ(0, precision_flag());
  for (const LONG given : {1, -1, 2, 256, 65536}) {
    EXPECT_EQ(S_OK, schema_->put_DoublePrecisionFlag(given));
    EXPECT_EQ(-1, precision_flag()) << given;
  }
  EXPECT_EQ(S_OK, schema_->put_DoublePrecisionFlag(0));
  EXPECT_EQ(0, precision_flag());
  EXPECT_EQ(E_POINTER, schema_->get_DoublePrecisionFlag(nullptr));
  EXPECT_EQ(E_POINTER, schema_->get_DoublePrecision(nullptr));
}

TEST_F(schema_properties, the_precision_property_makes_the_flag_0_or_1) {
  EXPECT_EQ(S_OK, schema_->put_DoublePrecision(7));
  EXPECT_EQ(-1, precision_flag());
  ASSERT_EQ(S_OK, add_text("T", 4));
  EXPECT_EQ(8, size(1)) << "texts ask for exactly 1";
  EXPECT_EQ(S_OK, schema_->put_DoublePrecision(VARIANT_FALSE));
  EXPECT_EQ(0, precision_flag());
}

TEST_F(schema_properties, special_values_of_single_precision_are_floats_widened) {
  EXPECT_EQ(-1.0000000150474662e30, special(&IOvSchema::get_SpecialValueAbsent));
  EXPECT_EQ(-1.0000000150474662e30, special(&IOvSchema::get_SpecialValueBottom));
  EXPECT_EQ(1.0000000150474662e30, special(&IOvSchema::get_SpecialValueTop));
  EXPECT_EQ(1.0000000031710769e-30, special(&IOvSchema::get_SpecialValueTrace));
  EXPECT_NE(1.0e30, special(&IOvSchema::get_SpecialValueTop));
}

TEST_F(schema_properties, special_values_of_double_precision) {
  for (const LONG flag : {1, 2}) {
    ASSERT_EQ(S_OK, schema_->put_DoublePrecisionFlag(flag));
    EXPECT_EQ(-1.0e30, special(&IOvSchema::get_SpecialValueAbsent));
    EXPECT_EQ(-1.0e30, special(&IOvSchema::get_SpecialValueBottom));
    EXPECT_EQ(1.0e30, special(&IOvSchema::get_SpecialValueTop));
    EXPECT_EQ(1.0e-30, special(&IOvSchema::get_SpecialValueTrace));
  }
  EXPECT_EQ(E_POINTER, schema_->get_SpecialValueAbsent(nullptr));
}

TEST_F(schema_properties, filling_empties_the_list_and_opens_the_latch) {
  ASSERT_EQ(S_OK, schema_->put_FieldCount(9));
  ASSERT_EQ(S_OK, add_number("A"));
  ASSERT_EQ(S_OK, schema_->put_ReadOnly(VARIANT_TRUE));
  EXPECT_TRUE(ovf::begin_filling(*schema_.get()));
  EXPECT_EQ(0, count());
  EXPECT_EQ(0, read_only());
  EXPECT_EQ(E_FAIL, set_name(1, "B")) << "no slot is left either";
  EXPECT_EQ(S_OK, add_number("B"));
}

}  // namespace
}  // namespace ovtest
