// How the arguments of a late-bound call reach the method.
#include <gtest/gtest.h>

#include "server/late_call.h"
#include "server/recording_schema.h"
#include "server/recording_table.h"

namespace ovtest {
namespace {

constexpr DISPID get_column_as_double = 1;
constexpr DISPID set_column = 10;
constexpr DISPID set_column_double = 11;
constexpr DISPID set_column_float = 12;
constexpr DISPID set_column_string = 13;
constexpr DISPID open = 19;
constexpr DISPID create = 21;
constexpr DISPID sort = 35;
constexpr DISPID repair = 37;

class late_arguments : public testing::Test {
 protected:
  called method(DISPID id, const std::vector<VARIANT>& arguments, std::vector<DISPID> names = {}) {
    table_.record().last.clear();
    return invoke(table_.dispatch(), id, DISPATCH_METHOD, arguments, std::move(names));
  }
  const std::string& last() const { return table_.record().last; }

  recorded<recording_table, IOvTable> table_;
};

TEST_F(late_arguments, come_last_first) {
  const bstr name("a.ovt");
  EXPECT_EQ(S_OK, method(open, {of_long(1), of_text(name)}).status);
  EXPECT_EQ("Open(\"a.ovt\", 1)", last());
}

TEST_F(late_arguments, are_changed_to_the_parameters_type) {
  const bstr digits("12");
  EXPECT_EQ(S_OK, method(set_column_double, {of_text(digits), of_short(3)}).status);
  EXPECT_EQ("SetColumnDouble(3, 12)", last());
  EXPECT_EQ(S_OK, method(set_column_float, {of_double(0.25), of_double(2.0)}).status);
  EXPECT_EQ("SetColumnFloat(2, 0.25)", last());
  EXPECT_EQ(S_OK, method(set_column_string, {of_double(1.5), of_text(digits)}).status);
  EXPECT_EQ("SetColumnString(12, \"1.5\")", last());
  EXPECT_EQ(S_OK, method(sort, {of_long(7), of_long(1)}).status);
  EXPECT_EQ("Sort(1, -1)", last()) << "any number but 0 is true";
}

TEST_F(late_arguments, of_a_truth_that_is_one_already_stay_as_they_are) {
  VARIANT truth = of_type(VT_BOOL);
  truth.boolVal = 1;
  EXPECT_EQ(S_OK, method(sort, {truth, of_long(1)}).status);
  EXPECT_EQ("Sort(1, 1)", last());
}

TEST_F(late_arguments, may_be_references) {
  LONG column = 4;
  double number = 1.5;
  EXPECT_EQ(S_OK,
            method(set_column_double, {by_reference(VT_R8, &number), by_reference(VT_I4, &column)}).status);
  EXPECT_EQ("SetColumnDouble(4, 1.5)", last());

  SHORT narrow = 5;
  VARIANT held = of_double(2.5);
  EXPECT_EQ(
      S_OK,
      method(set_column_double, {by_reference(VT_VARIANT, &held), by_reference(VT_I2, &narrow)}).status);
  EXPECT_EQ("SetColumnDouble(5, 2.5)", last());

  const bstr name("b.ovt");
  BSTR text = name.get();
  VARIANT reference = by_reference(VT_BSTR, &text);
  EXPECT_EQ(S_OK, method(open, {of_long(0), by_reference(VT_VARIANT, &reference)}).status);
  EXPECT_EQ("Open(\"b.ovt\", 0)", last());
}

TEST_F(late_arguments, that_refer_to_nothing_are_refused) {
  for (const VARTYPE type : {VT_I4, VT_R8, VT_BSTR, VT_VARIANT, VT_DISPATCH}) {
    SCOPED_TRACE(type);
    const called answer = method(get_column_as_double, {by_reference(type, nullptr)});
    EXPECT_EQ(DISP_E_TYPEMISMATCH, answer.status);
    EXPECT_EQ(0U, answer.bad_argument);
  }
  VARIANT reference = by_reference(VT_I4, nullptr);
  EXPECT_EQ(DISP_E_TYPEMISMATCH, method(get_column_as_double, {by_reference(VT_VARIANT, &reference)}).status);
  EXPECT_EQ(DISP_E_TYPEMISMATCH, method(create, {by_reference(VT_DISPATCH, nullptr), of_long(1)}).status);
  EXPECT_EQ("", last());
}

TEST_F(late_arguments, that_cannot_be_changed_are_named_by_their_place) {
  const bstr word("first");
  called answer = method(set_column_double, {of_double(1.0), of_text(word)});
  EXPECT_EQ(DISP_E_TYPEMISMATCH, answer.status);
  EXPECT_EQ(1U, answer.bad_argument);
  answer = method(set_column_double, {of_text(word), of_long(1)});
  EXPECT_EQ(DISP_E_TYPEMISMATCH, answer.status);
  EXPECT_EQ(0U, answer.bad_argument);
  answer = method(get_column_as_double, {of_double(3.0e9)});
  EXPECT_EQ(DISP_E_TYPEMISMATCH, answer.status) << "a number beyond 32 bits";
  answer = method(get_column_as_double, {of_type(VT_NULL)});
  EXPECT_EQ(DISP_E_TYPEMISMATCH, answer.status);
  answer = method(get_column_as_double, {of_type(VT_ARRAY | VT_I4)});
  EXPECT_EQ(DISP_E_TYPEMISMATCH, answer.status);
  EXPECT_EQ("", last()) << "no method was reached";
  EXPECT_EQ("", answer.description);
}

TEST_F(late_arguments, named_by_their_place_too) {
  const bstr word("first");
  // Places are 0 for lIndex and 1 for newVal; the bad one stands second in what is given.
  const called answer = method(set_column_double, {of_double(1.0), of_text(word)}, {1, 0});
  EXPECT_EQ(DISP_E_TYPEMISMATCH, answer.status);
  EXPECT_EQ(1U, answer.bad_argument);
}

TEST_F(late_arguments, are_none_of_them_optional) {
  const bstr name("a.ovt");
  EXPECT_EQ(DISP_E_BADPARAMCOUNT, method(open, {of_text(name)}).status);
  EXPECT_EQ(DISP_E_BADPARAMCOUNT, method(open, {}).status);
  EXPECT_EQ(DISP_E_BADPARAMCOUNT, method(open, {of_long(1), of_long(1), of_text(name)}).status);
  VARIANT missing = of_type(VT_ERROR);
  missing.scode = DISP_E_PARAMNOTFOUND;
  const called answer = method(open, {missing, of_text(name)});
  EXPECT_EQ(DISP_E_TYPEMISMATCH, answer.status);
  EXPECT_EQ(0U, answer.bad_argument);
  EXPECT_EQ("", last());
}

TEST_F(late_arguments, of_a_property_put_need_not_be_named) {
  constexpr DISPID name_property = 8;
  constexpr DISPID filter_string = 30;
  const bstr text("AU > 1");
  EXPECT_EQ(S_OK, invoke(table_.dispatch(), name_property, DISPATCH_PROPERTYPUT, {of_text(text)}).status);
  EXPECT_EQ("put_Name(\"AU > 1\")", last());
  EXPECT_EQ(
      S_OK,
      invoke(table_.dispatch(), filter_string, DISPATCH_PROPERTYPUT, {of_text(text), of_long(2)}).status);
  EXPECT_EQ("put_FilterString(2, \"AU > 1\")", last()) << "the new value stands behind the others";
}

TEST_F(late_arguments, may_be_named) {
  const bstr name("a.ovt");
  EXPECT_EQ(S_OK, method(open, {of_text(name), of_long(1)}, {0, 1}).status);
  EXPECT_EQ("Open(\"a.ovt\", 1)", last());
  EXPECT_EQ(S_OK, method(open, {of_long(1), of_text(name)}, {1}).status) << "the first one by its place";
  EXPECT_EQ("Open(\"a.ovt\", 1)", last());
}

TEST_F(late_arguments, named_twice_or_by_an_unknown_number_are_not_found) {
  const bstr name("a.ovt");
  called answer = method(open, {of_long(1), of_text(name)}, {0, 0});
  EXPECT_EQ(DISP_E_PARAMNOTFOUND, answer.status);
  EXPECT_EQ(1U, answer.bad_argument);
  answer = method(open, {of_long(1), of_text(name)}, {2});
  EXPECT_EQ(DISP_E_PARAMNOTFOUND, answer.status);
  EXPECT_EQ(0U, answer.bad_argument);
  EXPECT_EQ(DISP_E_PARAMNOTFOUND, method(open, {of_long(1), of_text(name)}, {-7}).status);
  EXPECT_EQ(DISP_E_PARAMNOTFOUND, method(open, {of_long(1), of_text(name)}, {DISPID_PROPERTYPUT}).status);
  EXPECT_EQ("", last());
}

TEST_F(late_arguments, of_a_variant_parameter_stay_as_they_are) {
  LONG number = 5;
  EXPECT_EQ(S_OK, method(set_column, {by_reference(VT_I4, &number), of_long(1)}).status);
  EXPECT_EQ("SetColumn(1, VARIANT 16387)", last());
  VARIANT held = of_double(1.5);
  EXPECT_EQ(S_OK, method(set_column, {by_reference(VT_VARIANT, &held), of_long(1)}).status);
  EXPECT_EQ("SetColumn(1, VARIANT 16396)", last());
  EXPECT_EQ(S_OK, method(set_column, {of_type(VT_NULL), of_long(1)}).status);
  EXPECT_EQ("SetColumn(1, VARIANT 1)", last());
}

TEST_F(late_arguments, that_are_objects_are_asked_for_the_parameters_interface) {
  const recorded<recording_schema, IOvSchema> schema;
  EXPECT_EQ(S_OK, method(repair, {of_dispatch(&schema.dispatch())}).status);
  EXPECT_EQ("Repair(object)", last());
  EXPECT_EQ(S_OK, method(repair, {of_unknown(schema.get())}).status);
  EXPECT_EQ("Repair(object)", last());
  IDispatch* pointer = &schema.dispatch();
  EXPECT_EQ(S_OK, method(repair, {by_reference(VT_DISPATCH, &pointer)}).status);
  EXPECT_EQ("Repair(object)", last());
  VARIANT held = of_dispatch(pointer);
  const bstr name("a.ovt");
  EXPECT_EQ(S_OK, method(create, {by_reference(VT_VARIANT, &held), of_text(name)}).status);
  EXPECT_EQ("Create(\"a.ovt\", object)", last());
}

TEST_F(late_arguments, that_are_objects_of_another_kind_are_refused) {
  const called answer = method(repair, {of_dispatch(&table_.dispatch())});
  EXPECT_EQ(DISP_E_TYPEMISMATCH, answer.status);
  EXPECT_EQ(0U, answer.bad_argument);
  EXPECT_EQ(DISP_E_TYPEMISMATCH, method(repair, {of_long(1)}).status);
  EXPECT_EQ("", last());
}

TEST_F(late_arguments, that_hold_no_object_are_null_pointers) {
  for (const VARTYPE type : {VT_EMPTY, VT_NULL, VT_DISPATCH, VT_UNKNOWN}) {
    SCOPED_TRACE(type);
    EXPECT_EQ(S_OK, method(repair, {of_type(type)}).status);
    EXPECT_EQ("Repair(no object)", last());
  }
}

TEST_F(late_arguments, leave_the_callers_references_alone) {
  const recorded<recording_schema, IOvSchema> schema;
  schema.get()->AddRef();
  method(repair, {of_dispatch(&schema.dispatch())});
  EXPECT_EQ(1U, schema.get()->Release());
}

TEST_F(late_arguments, that_would_lend_a_buffer_are_refused) {
  LONG buffer[64] = {};
  for (const DISPID id : {24, 36}) {
    SCOPED_TRACE(id);
    const called answer = method(id, {by_reference(VT_I4, buffer)});
    EXPECT_EQ(DISP_E_TYPEMISMATCH, answer.status);
    EXPECT_EQ(0U, answer.bad_argument);
    EXPECT_EQ(DISP_E_BADPARAMCOUNT, method(id, {}).status);
  }
  EXPECT_EQ("", last());
}

}  // namespace
}  // namespace ovtest
