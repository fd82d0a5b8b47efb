// The one method whose failures leave it as exceptions, called late-bound on schemas as they are.
#include <gtest/gtest.h>

#include "ovfile/exception.h"
#include "support/late_bound.h"

namespace ovtest {
namespace {

class late_merge : public testing::Test {
 protected:
  late_answer merge(IDispatch* other) {
    clear_error();
    return call_by_name(*schema_.get(), "Merge", DISPATCH_METHOD, {object_variant(other), variant(LONG{1})});
  }

  void expect_exception_record(const late_answer& answer, const char* description) {
    EXPECT_EQ(DISP_E_EXCEPTION, answer.status);
    EXPECT_EQ(E_FAIL, answer.code);
    EXPECT_EQ("OvFile.OvSchema.1", answer.source);
    EXPECT_EQ(description, answer.description);
    EXPECT_EQ("", take_error_text()) << "the record carries it, nothing is left behind";
  }

  owned<IOvSchema> schema_ = make_schema();
};

TEST_F(late_merge, of_nothing_is_an_exception_record) {
  expect_exception_record(merge(nullptr), "Merge failed, invalid input");
}

TEST_F(late_merge, of_another_precision_is_an_exception_record) {
  const auto other = make_schema();
  ASSERT_EQ(S_OK, other->put_DoublePrecision(VARIANT_TRUE));
  expect_exception_record(merge(other.get()), "Merge failed, precision of both schemas should match");
}

TEST_F(late_merge, that_fits_goes_through) {
  const auto other = make_schema();
  ASSERT_EQ(S_OK, other->CreatePointsFile());
  EXPECT_EQ(S_OK, merge(other.get()).status);
  LONG fields = 0;
  EXPECT_EQ(S_OK, schema_->get_FieldCount(&fields));
  EXPECT_EQ(3, fields);
}

TEST_F(late_merge, early_bound_throws) {
  EXPECT_THROW(schema_->Merge(nullptr, ovSchemaMergeModeAll), MyExceptionClass);
}

}  // namespace
}  // namespace ovtest
