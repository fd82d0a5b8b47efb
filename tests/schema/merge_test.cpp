// Folding the fields of another schema into this one.
#include <limits>

#include "ovfile/exception.h"
#include "schema/foreign_schema.h"
#include "schema/schema_test.h"
#include "support/late_bound.h"

namespace ovtest {
namespace {

class merge : public schema_test {
 protected:
  HRESULT merge_all() { return schema_->Merge(other_.get(), ovSchemaMergeModeAll); }
  HRESULT merge_matching() { return schema_->Merge(other_.get(), ovSchemaMergeModeMatching); }
  void both_double() {
    ASSERT_EQ(S_OK, schema_->put_DoublePrecision(VARIANT_TRUE));
    ASSERT_EQ(S_OK, other_->put_DoublePrecision(VARIANT_TRUE));
  }
  HRESULT add_other_number(const char* name, double value, LONG implicit = 0) {
    return other_->AddNumericColumn(bstr(name).get(), value, implicit);
  }
  HRESULT add_other_text(const char* name, LONG length, const char* value, LONG implicit = 0) {
    return other_->AddStringColumn(bstr(name).get(), length, bstr(value).get(), implicit);
  }
  /// What Merge throws; empty when it throws nothing.
  static std::string thrown(IOvSchema& schema, IOvSchema* other) {
    try {
      schema.Merge(other, ovSchemaMergeModeAll);
    } catch (const MyExceptionClass& error) {
      return to_utf8(error.message());
    }
    return {};
  }

  ovfile::pointer<IOvSchema> other_ = make_schema();
};

TEST_F(merge, matching_changes_only_the_fields_that_are_there) {
  ASSERT_EQ(S_OK, add_number("B", 1));
  ASSERT_EQ(S_OK, add_number("C", 2));
  ASSERT_EQ(S_OK, add_other_number("A", 3));
  ASSERT_EQ(S_OK, add_other_number("B", 4, 1));
  EXPECT_EQ(S_OK, merge_matching());
  ASSERT_EQ(2, count());
  EXPECT_EQ("B", name(1));
  EXPECT_EQ(4.0, number_default(1));
  EXPECT_EQ(-1, offset(1));
  EXPECT_EQ("C", name(2));
  EXPECT_EQ(2.0, number_default(2));
  EXPECT_EQ(0, offset(2));
}

TEST_F(merge, all_appends_the_others_too) {
  ASSERT_EQ(S_OK, add_number("B", 1));
  ASSERT_EQ(S_OK, add_number("C", 2));
  ASSERT_EQ(S_OK, add_other_number("A", 3, 1));
  ASSERT_EQ(S_OK, add_other_number("B", 4));
  EXPECT_EQ(S_OK, merge_all());
  ASSERT_EQ(3, count());
  EXPECT_EQ(4.0, number_default(1));
  EXPECT_EQ("A", name(3));
  EXPECT_EQ(3.0, number_default(3));
  EXPECT_EQ(-1, offset(3));
  EXPECT_EQ(4, size(3));
  LONG others = 0;
  EXPECT_EQ(S_OK, other_->get_FieldCount(&others));
  EXPECT_EQ(2, others) << "the other schema stays";
}

TEST_F(merge, any_other_mode_is_matching) {
  ASSERT_EQ(S_OK, add_other_number("A", 3));
  EXPECT_EQ(S_OK, schema_->Merge(other_.get(), static_cast<OvSchemaMergeMode>(2)));
  EXPECT_EQ(0, count());
}

TEST_F(merge, goes_by_case) {
  ASSERT_EQ(S_OK, add_number("a", 1));
  ASSERT_EQ(S_OK, add_other_number("A", 3));
  EXPECT_EQ(S_OK, merge_all());
  EXPECT_EQ(2, count());
  EXPECT_EQ(1.0, number_default(1));
}

TEST_F(merge, makes_a_number_of_a_text_and_a_text_of_a_number) {
  ASSERT_EQ(S_OK, add_text("N", 8, "old"));
  ASSERT_EQ(S_OK, add_number("T", 5));
  ASSERT_EQ(S_OK, add_other_number("N", 2.5));
  ASSERT_EQ(S_OK, add_other_text("T", 4, "new", 1));
  EXPECT_EQ(S_OK, merge_matching());
  EXPECT_EQ(1, type(1));
  EXPECT_EQ(4, size(1));
  EXPECT_EQ(2.5, number_default(1));
  EXPECT_EQ(3, type(2));
  EXPECT_EQ(4, size(2));
  EXPECT_EQ("new ", text_default(2));
  EXPECT_EQ(-1, offset(2));
}

TEST_F(merge, adds_a_text_of_12_bytes_as_8_characters_in_double_precision) {
  both_double();
  ASSERT_EQ(S_OK, add_other_text("T", 4, "abcdefgh"));
  ASSERT_EQ(S_OK, other_->SetFieldSize(1, 12));
  ASSERT_EQ(S_OK, other_->SetFieldDefault(1, text_variant("abcdefgh").get()));
  EXPECT_EQ(S_OK, merge_all());
  EXPECT_EQ(8, characters(1));
  EXPECT_EQ(16, size(1));
  EXPECT_EQ("abcdef  ", text_default(1)) << "cut to 6 characters first";
}

TEST_F(merge, overwrites_with_the_size_as_it_is) {
  both_double();
  ASSERT_EQ(S_OK, add_text("T", 4, "old"));
  ASSERT_EQ(S_OK, add_other_text("T", 4, "abcd"));
  ASSERT_EQ(S_OK, other_->SetFieldSize(1, 13));
  EXPECT_EQ(S_OK, merge_matching());
  EXPECT_EQ(13, size(1));
  EXPECT_EQ("abcd  ", text_default(1)) << "padded to 6 characters";
}

TEST_F(merge, takes_bytes_for_characters_in_single_precision) {
  ASSERT_EQ(S_OK, add_other_text("T", 8, "abc"));
  EXPECT_EQ(S_OK, merge_all());
  EXPECT_EQ(8, size(1));
  EXPECT_EQ("abc     ", text_default(1));
}

TEST_F(merge, refuses_no_schema) {
  ASSERT_EQ(S_OK, add_number("A", 1));
  EXPECT_EQ("Merge failed, invalid input", thrown(*schema_.get(), nullptr));
  EXPECT_EQ(1, count());
}

TEST_F(merge, refuses_another_precision) {
  ASSERT_EQ(S_OK, add_other_number("A", 1));
  ASSERT_EQ(S_OK, schema_->put_DoublePrecision(VARIANT_TRUE));
  EXPECT_EQ("Merge failed, precision of both schemas should match", thrown(*schema_.get(), other_.get()));
  EXPECT_EQ("Merge failed, precision of both schemas should match", thrown(*other_.get(), schema_.get()));
  EXPECT_EQ(0, count());
}

TEST_F(merge, compares_this_flag_as_it_was_given) {
  ASSERT_EQ(S_OK, other_->put_DoublePrecisionFlag(9));
  ASSERT_EQ(S_OK, schema_->put_DoublePrecisionFlag(1));
  EXPECT_EQ("", thrown(*schema_.get(), other_.get())) << "the other's counts as 1";
  ASSERT_EQ(S_OK, schema_->put_DoublePrecisionFlag(9));
  EXPECT_EQ("Merge failed, precision of both schemas should match", thrown(*schema_.get(), other_.get()));
  EXPECT_EQ("Merge failed, precision of both schemas should match", thrown(*schema_.get(), schema_.get()));
}

TEST_F(merge, with_itself_changes_nothing) {
  ASSERT_EQ(S_OK, add_number("A", 1, 1));
  ASSERT_EQ(S_OK, add_text("T", 5, "ab"));
  EXPECT_EQ(S_OK, schema_->Merge(schema_.get(), ovSchemaMergeModeAll));
  ASSERT_EQ(2, count());
  EXPECT_EQ(1.0, number_default(1));
  EXPECT_EQ(-1, offset(1));
  EXPECT_EQ("ab      ", text_default(2));
}

TEST_F(merge, makes_a_field_without_a_type_a_number) {
  ASSERT_EQ(S_OK, other_->put_FieldCount(1));
  ASSERT_EQ(S_OK, other_->SetFieldName(1, bstr("A").get()));
  EXPECT_EQ(S_OK, merge_all());
  ASSERT_EQ(1, count());
  EXPECT_EQ(1, type(1));
  EXPECT_EQ(0.0, number_default(1));
}

TEST_F(merge, keeps_names_and_types_of_a_read_only_schema) {
  ASSERT_EQ(S_OK, add_text("A", 4, "old"));
  ASSERT_EQ(S_OK, schema_->put_ReadOnly(VARIANT_TRUE));
  ASSERT_EQ(S_OK, add_other_text("A", 8, "new"));
  ASSERT_EQ(S_OK, add_other_number("B", 1));
  EXPECT_EQ(S_OK, merge_all()) << "what single calls refuse is let go";
  EXPECT_EQ(1, count());
  EXPECT_EQ(8, size(1));
  EXPECT_EQ("new     ", text_default(1));
}

TEST_F(merge, leaves_out_what_is_beyond_256_fields) {
  for (int i = 0; i < 255; ++i) ASSERT_EQ(S_OK, add_number("N"));
  ASSERT_EQ(S_OK, add_other_number("A", 1));
  ASSERT_EQ(S_OK, add_other_text("B", 4, "x"));
  EXPECT_EQ(S_OK, merge_all());
  EXPECT_EQ(256, count());
  EXPECT_EQ("A", name(256));
}

TEST_F(merge, reserves_no_memory_for_widths_that_no_field_has) {
  ASSERT_EQ(S_OK, add_text("A", 4, "old"));
  for (const char* each : {"A", "B"}) ASSERT_EQ(S_OK, add_other_text(each, 4, "new"));
  ASSERT_EQ(S_OK, other_->SetFieldSize(1, 2147483647));
  ASSERT_EQ(S_OK, other_->SetFieldSize(2, 2147483647));
  EXPECT_EQ(S_OK, merge_all());
  EXPECT_EQ(1, count());
  EXPECT_EQ(2147483647, size(1));
  EXPECT_EQ("new ", text_default(1));
  ASSERT_EQ(S_OK, other_->SetFieldSize(1, -8));
  EXPECT_EQ(S_OK, merge_all());
  EXPECT_EQ("new ", text_default(1));
}

TEST_F(merge, reads_a_foreign_schema_with_float_defaults) {
  ASSERT_EQ(S_OK, add_number("HERE"));
  foreign_schema foreign({{"HERE", ovColumnSingle, 4, 0, variant(0.1F)},
                          {"NEW", ovColumnSingle, 4, -1, variant(0.1F)},
                          {"COUNT", ovColumnSingle, 4, 0, variant(LONG{7})},
                          {"TEXT", ovColumnString, 8, 0, variant(12.5)},
                          {"ODD", static_cast<OvColumnType>(9), 4, 0, variant()},
                          {"NONE", ovColumnSingle, 4, 0, variant()}});
  EXPECT_EQ(S_OK, schema_->Merge(&foreign, ovSchemaMergeModeAll));
  ASSERT_EQ(5, count());
  EXPECT_EQ(0.1, number_default(1)) << "the variant as it is given: rounded to seven digits";
  EXPECT_EQ(0.10000000149011612, number_default(2)) << "widened plainly";
  EXPECT_EQ(-1, offset(2));
  EXPECT_EQ(7.0, number_default(3));
  EXPECT_EQ("12.5    ", text_default(4));
  EXPECT_EQ("NONE", name(5));
}

TEST_F(merge, of_a_foreign_schema_that_answers_nothing_changes_nothing) {
  ASSERT_EQ(S_OK, add_number("A", 1));
  foreign_schema foreign(
      {{"A", ovColumnSingle, 4, -1, variant(2.0)}, {"B", ovColumnSingle, 4, 0, variant(2.0)}});
  foreign.failing = true;
  EXPECT_EQ(S_OK, schema_->Merge(&foreign, ovSchemaMergeModeAll));
  ASSERT_EQ(1, count()) << "a field without a type is none";
  EXPECT_EQ(1.0, number_default(1));
}

TEST_F(merge, gives_a_late_bound_caller_an_exception_record) {
  const auto no_schema =
      call_by_name(*schema_.get(), "Merge", DISPATCH_METHOD, {object_variant(nullptr), variant(LONG{1})});
  EXPECT_EQ(DISP_E_EXCEPTION, no_schema.status);
  EXPECT_EQ(E_FAIL, no_schema.code);
  EXPECT_EQ("OvFile.OvSchema.1", no_schema.source);
  EXPECT_EQ("Merge failed, invalid input", no_schema.description);

  ASSERT_EQ(S_OK, other_->put_DoublePrecision(VARIANT_TRUE));
  const auto mismatch = call_by_name(*schema_.get(), "merge", DISPATCH_METHOD,
                                     {object_variant(other_.get()), variant(LONG{1})});
  EXPECT_EQ(DISP_E_EXCEPTION, mismatch.status);
  EXPECT_EQ("OvFile.OvSchema.1", mismatch.source);
  EXPECT_EQ("Merge failed, precision of both schemas should match", mismatch.description);
}

TEST_F(merge, works_for_a_late_bound_caller) {
  ASSERT_EQ(S_OK, add_other_number("A", 2));
  const auto answer = call_by_name(*schema_.get(), "Merge", DISPATCH_METHOD,
                                   {object_variant(other_.get()), variant(LONG{1})});
  EXPECT_EQ(S_OK, answer.status);
  EXPECT_EQ(1, count());
}

}  // namespace
}  // namespace ovtest
