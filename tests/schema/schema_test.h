// A schema object and short ways to ask it.
#pragma once

#include <gtest/gtest.h>

#include "schema/ov_schema.h"
#include "support/component.h"

namespace ovtest {

class schema_test : public testing::Test {
 protected:
  void SetUp() override {
    void* made = nullptr;
    ASSERT_EQ(S_OK, ovf::COvSchema::create(nullptr, IID_IOvSchema, &made));
    *schema_.out() = static_cast<IOvSchema*>(made);
    clear_error();
  }
  void TearDown() override { EXPECT_EQ("", take_error_text()) << "schemas publish no error information"; }

  HRESULT add_number(const char* name, double value = 0.0, LONG implicit = 0) {
    return schema_->AddNumericColumn(bstr(name).get(), value, implicit);
  }
  HRESULT add_text(const char* name, LONG length, const char* value = "", LONG implicit = 0) {
    return schema_->AddStringColumn(bstr(name).get(), length, bstr(value).get(), implicit);
  }
  HRESULT set_name(LONG index, const char* name) { return schema_->SetFieldName(index, bstr(name).get()); }

  LONG count() {
    LONG value = -7;
    EXPECT_EQ(S_OK, schema_->get_FieldCount(&value));
    return value;
  }
  std::string name(LONG index) {
    bstr value;
    EXPECT_EQ(S_OK, schema_->GetFieldName(index, value.out()));
    return value.utf8();
  }
  LONG type(LONG index) {
    OvColumnType value{};
    EXPECT_EQ(S_OK, schema_->GetFieldType(index, &value));
    return value;
  }
  LONG size(LONG index) {
    LONG value = -7;
    EXPECT_EQ(S_OK, schema_->GetFieldSize(index, &value));
    return value;
  }
  LONG characters(LONG index) {
    LONG value = -7;
    EXPECT_EQ(S_OK, schema_->GetFieldSizeChars(index, &value));
    return value;
  }
  LONG offset(LONG index) {
    LONG value = -7;
    EXPECT_EQ(S_OK, schema_->GetFieldOffset(index, &value));
    return value;
  }
  VARIANT_BOOL implicit(LONG index) {
    VARIANT_BOOL value = -7;
    EXPECT_EQ(S_OK, schema_->IsFieldImplicit(index, &value));
    return value;
  }
  double number_default(LONG index) {
    variant value;
    EXPECT_EQ(S_OK, schema_->GetFieldDefault(index, value.out()));
    EXPECT_EQ(VT_R8, value.type());
    return value.number();
  }
  std::string text_default(LONG index) {
    variant value;
    EXPECT_EQ(S_OK, schema_->GetFieldDefault(index, value.out()));
    EXPECT_EQ(VT_BSTR, value.type());
    return to_utf8(value.view());
  }

  ovfile::pointer<IOvSchema> schema_;
};

}  // namespace ovtest
