// The schema as sibling components see it: the same object through another table of functions.
#include "schema/schema_test.h"

namespace ovtest {
namespace {

class common_schema : public schema_test {
 protected:
  void SetUp() override {
    schema_test::SetUp();
    common_ = schema_.query<IZuCommonDataSchema>();
    ASSERT_TRUE(common_);
  }
  void TearDown() override {
    common_ = {};
    schema_test::TearDown();
  }

  ovfile::pointer<IZuCommonDataSchema> common_;
};

TEST_F(common_schema, adds_columns_by_length) {
  EXPECT_EQ(S_OK, common_->AddColumn(bstr("T").get(), ovColumnString, 13));
  EXPECT_EQ(S_OK, common_->AddColumn(bstr("N").get(), ovColumnSingle, 13));
  EXPECT_EQ(E_FAIL, common_->AddColumn(bstr("X").get(), static_cast<OvColumnType>(0), 4));
  EXPECT_EQ(2, count());
  EXPECT_EQ(16, size(1));
  EXPECT_EQ(4, size(2));
}

TEST_F(common_schema, shares_its_fields_with_the_other_face) {
  ASSERT_EQ(S_OK, common_->put_FieldCount(2));
  EXPECT_EQ(S_OK, common_->SetFieldName(1, bstr("A").get()));
  EXPECT_EQ(S_OK, common_->SetFieldType(1, ovColumnString));
  EXPECT_EQ(S_OK, common_->SetFieldSize(1, 8));
  EXPECT_EQ(S_OK, common_->SetFieldOffset(1, -1));
  EXPECT_EQ(S_OK, common_->SetFieldDefault(1, text_variant("lode").get()));
  EXPECT_EQ("A", name(1));
  EXPECT_EQ(3, type(1));
  EXPECT_EQ(8, size(1));
  EXPECT_EQ(-1, offset(1));
  EXPECT_EQ("lode", text_default(1));
  EXPECT_EQ(S_OK, common_->put_Description(bstr("lodes").get()));
  bstr description;
  EXPECT_EQ(S_OK, schema_->get_Description(description.out()));
  EXPECT_EQ("lodes", description.utf8());
}

TEST_F(common_schema, reads_what_the_other_face_wrote) {
  ASSERT_EQ(S_OK, schema_->put_DoublePrecision(VARIANT_TRUE));
  ASSERT_EQ(S_OK, add_number("A", 2.5));
  LONG number = 0;
  OvColumnType kind{};
  bstr text;
  variant value;
  EXPECT_EQ(S_OK, common_->get_FieldCount(&number));
  EXPECT_EQ(1, number);
  EXPECT_EQ(S_OK, common_->GetFieldType(1, &kind));
  EXPECT_EQ(2, kind) << "the same codes on both faces";
  EXPECT_EQ(S_OK, common_->GetFieldName(1, text.out()));
  EXPECT_EQ("A", text.utf8());
  EXPECT_EQ(S_OK, common_->GetFieldSize(1, &number));
  EXPECT_EQ(8, number);
  EXPECT_EQ(S_OK, common_->GetFieldOffset(1, &number));
  EXPECT_EQ(0, number);
  EXPECT_EQ(S_OK, common_->GetFieldDefault(1, value.out()));
  EXPECT_EQ(2.5, value.number());
  EXPECT_EQ(S_FALSE, common_->GetFieldIndex(bstr("a").get(), &number));
  EXPECT_EQ(-1, number);
}

TEST_F(common_schema, shares_the_latch) {
  EXPECT_EQ(S_OK, common_->put_ReadOnly(VARIANT_TRUE));
  EXPECT_EQ(E_FAIL, schema_->put_ReadOnly(VARIANT_FALSE));
  EXPECT_EQ(E_FAIL, common_->AddColumn(bstr("A").get(), ovColumnSingle, 4));
  EXPECT_EQ(E_FAIL, common_->SetFieldName(1, bstr("A").get()));
  VARIANT_BOOL latched = 0;
  EXPECT_EQ(S_OK, common_->get_ReadOnly(&latched));
  EXPECT_EQ(1, latched);
}

TEST_F(common_schema, leaves_eight_positions_empty) {
  EXPECT_EQ(E_NOTIMPL, common_->Reserved1());
  EXPECT_EQ(E_NOTIMPL, common_->Reserved2());
  EXPECT_EQ(E_NOTIMPL, common_->Reserved3());
  EXPECT_EQ(E_NOTIMPL, common_->Reserved4());
  EXPECT_EQ(E_NOTIMPL, common_->Reserved5());
  EXPECT_EQ(E_NOTIMPL, common_->Reserved6());
  EXPECT_EQ(E_NOTIMPL, common_->Reserved7());
  EXPECT_EQ(E_NOTIMPL, common_->Reserved8());
}

TEST_F(common_schema, is_dispatched_by_its_own_table) {
  wide name = OLESTR("AddColumn");
  LPOLESTR pointer = name.data();
  DISPID id = 0;
  EXPECT_EQ(S_OK, common_->GetIDsOfNames(IID_NULL, &pointer, 1, 0, &id));
  EXPECT_EQ(24, id);
  EXPECT_EQ(S_OK, schema_->GetIDsOfNames(IID_NULL, &pointer, 1, 0, &id));
  EXPECT_EQ(15, id);
}

}  // namespace
}  // namespace ovtest
