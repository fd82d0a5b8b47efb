// What a late-bound caller gets back: results, properties put, failures.
#include <gtest/gtest.h>

#include "ovfile/exception.h"
#include "server/late_call.h"
#include "server/recording_schema.h"
#include "server/recording_table.h"
#include "server/report_error.h"

namespace ovtest {
namespace {

constexpr DISPID schema_property = 7;
constexpr DISPID name_property = 8;
constexpr DISPID filter_property = 30;
constexpr DISPID get_next_row = 5;
constexpr DISPID get_row_count = 4;
constexpr DISPID merge = 37;

class late_results : public testing::Test {
 protected:
  called method(DISPID id, const std::vector<VARIANT>& arguments = {}) {
    return invoke(table_.dispatch(), id, DISPATCH_METHOD, arguments);
  }
  called put(DISPID id, const VARIANT& value, WORD kind = DISPATCH_PROPERTYPUT) {
    return invoke(table_.dispatch(), id, kind, {value}, {DISPID_PROPERTYPUT});
  }
  recording_table& record() { return table_.record(); }

  recorded<recording_table, IOvTable> table_;
};

TEST_F(late_results, have_the_type_of_the_method) {
  EXPECT_EQ(VT_R8, method(1, {of_long(1)}).result.get().vt);
  EXPECT_EQ(2.5, method(1, {of_long(1)}).result.get().dblVal);
  EXPECT_EQ(VT_R4, method(2, {of_long(1)}).result.get().vt);
  EXPECT_EQ(0.5F, method(2, {of_long(1)}).result.get().fltVal);
  const called text = method(3, {of_long(1)});
  ASSERT_EQ(VT_BSTR, text.result.get().vt);
  EXPECT_EQ("handed out", to_utf8(text.result.get().bstrVal));
  EXPECT_EQ(VT_I4, method(get_row_count).result.get().vt);
  EXPECT_EQ(42, method(get_row_count).result.get().lVal);
  const called truth = method(28, {of_long(1), of_long(1)});
  EXPECT_EQ(VT_BOOL, truth.result.get().vt);
  EXPECT_EQ(1, truth.result.get().boolVal) << "as the method says it";
  const called any = method(6, {of_long(1)});
  EXPECT_EQ(VT_R8, any.result.get().vt);
  EXPECT_EQ(3.25, any.result.get().dblVal);
  EXPECT_EQ(VT_EMPTY, method(get_next_row).result.get().vt);
}

TEST_F(late_results, of_an_enumeration_are_numbers) {
  const recorded<recording_schema, IOvSchema> schema;
  const called answer = invoke(schema.dispatch(), 10, DISPATCH_METHOD, {of_long(1)});
  EXPECT_EQ(VT_I4, answer.result.get().vt);
  EXPECT_EQ(42, answer.result.get().lVal);
}

TEST_F(late_results, that_are_objects_carry_their_reference) {
  const recorded<recording_schema, IOvSchema> schema;
  record().object = schema.get();
  called answer = invoke(table_.dispatch(), schema_property, DISPATCH_PROPERTYGET, {});
  ASSERT_EQ(VT_DISPATCH, answer.result.get().vt);
  EXPECT_EQ(&schema.dispatch(), answer.result.get().pdispVal);
  schema.get()->AddRef();
  EXPECT_EQ(2U, schema.get()->Release());
  answer.result = variant();
  schema.get()->AddRef();
  EXPECT_EQ(1U, schema.get()->Release());
  record().object = nullptr;
  answer = invoke(table_.dispatch(), schema_property, DISPATCH_PROPERTYGET, {});
  EXPECT_EQ(VT_DISPATCH, answer.result.get().vt);
  EXPECT_EQ(nullptr, answer.result.get().pdispVal);
}

TEST_F(late_results, that_nobody_wants_are_given_back) {
  const recorded<recording_schema, IOvSchema> schema;
  record().object = schema.get();
  DISPPARAMS none{};
  EXPECT_EQ(S_OK, table_.dispatch().Invoke(schema_property, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, nullptr,
                                           nullptr, nullptr));
  schema.get()->AddRef();
  EXPECT_EQ(1U, schema.get()->Release());
  VARIANT column = of_long(1);
  DISPPARAMS one{&column, nullptr, 1, 0};
  // A text that were kept would show as a leak.
  EXPECT_EQ(S_OK, table_.dispatch().Invoke(3, IID_NULL, 0, DISPATCH_METHOD, &one, nullptr, nullptr, nullptr));
}

TEST_F(late_results, of_a_run_off_the_end_are_success) {
  record().answer = S_FALSE;
  EXPECT_EQ(S_OK, method(get_next_row).status);
  const called answer = method(get_row_count);
  EXPECT_EQ(S_OK, answer.status);
  EXPECT_EQ(42, answer.result.get().lVal) << "the result counts too";
}

TEST_F(late_results, properties_are_put_by_value_or_reference) {
  const bstr name("b.ovt");
  for (const int kind : {DISPATCH_PROPERTYPUT, DISPATCH_PROPERTYPUTREF}) {
    record().last.clear();
    EXPECT_EQ(S_OK, put(name_property, of_text(name), static_cast<WORD>(kind)).status);
    EXPECT_EQ("put_Name(\"b.ovt\")", record().last);
  }
  record().last.clear();
  EXPECT_EQ(S_OK, put(name_property, of_text(name), DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF).status);
  EXPECT_EQ("put_Name(\"b.ovt\")", record().last);
}

TEST_F(late_results, properties_with_an_index_are_put) {
  const bstr filter("CU > 1");
  EXPECT_EQ(S_OK, invoke(table_.dispatch(), filter_property, DISPATCH_PROPERTYPUT,
                         {of_text(filter), of_long(2)}, {DISPID_PROPERTYPUT})
                      .status);
  EXPECT_EQ("put_FilterString(2, \"CU > 1\")", record().last);
  const called read = invoke(table_.dispatch(), filter_property, DISPATCH_PROPERTYGET, {of_long(2)});
  EXPECT_EQ("get_FilterString(2)", record().last);
  EXPECT_EQ(VT_BSTR, read.result.get().vt);
}

TEST_F(late_results, a_schema_put_late_keeps_the_callers_reference) {
  const recorded<recording_schema, IOvSchema> schema;
  EXPECT_EQ(S_OK, put(schema_property, of_dispatch(&schema.dispatch()), DISPATCH_PROPERTYPUTREF).status);
  EXPECT_EQ("put_Schema(object)", record().last);
  schema.get()->AddRef();
  ASSERT_EQ(2U, schema.get()->Release()) << "one more, which the table has taken over";
  schema.get()->Release();

  record().answer = E_FAIL;
  put(schema_property, of_dispatch(&schema.dispatch()));
  schema.get()->AddRef();
  EXPECT_EQ(1U, schema.get()->Release()) << "a failed put takes nothing over";

  record().answer = S_OK;
  EXPECT_EQ(S_OK, put(schema_property, of_dispatch(nullptr)).status);
  EXPECT_EQ("put_Schema(no object)", record().last);
}

TEST_F(late_results, a_failure_without_a_message_carries_its_status_alone) {
  record().answer = E_NOTIMPL;
  // What an earlier call has left is not taken for this one's.
  ovf::ReportError(CLSID_OvTable, OLESTR("long ago"), 0, nullptr, IID_IOvTable, E_FAIL);
  const called answer = method(get_row_count);
  EXPECT_EQ(DISP_E_EXCEPTION, answer.status);
  EXPECT_EQ(E_NOTIMPL, answer.code);
  EXPECT_EQ("", answer.description);
  EXPECT_EQ("", answer.source);
  EXPECT_EQ(VT_EMPTY, answer.result.get().vt);
  EXPECT_EQ("", take_error_text());
}

TEST_F(late_results, a_success_clears_earlier_error_information) {
  ovf::ReportError(CLSID_OvTable, OLESTR("long ago"), 0, nullptr, IID_IOvTable, E_FAIL);
  EXPECT_EQ(S_OK, method(get_row_count).status);
  EXPECT_EQ("", take_error_text());
}

TEST_F(late_results, exceptions_become_exception_records) {
  const recorded<recording_schema, IOvSchema> schema;
  schema.record().exception = std::make_exception_ptr(
      MyExceptionClass(OLESTR("Merge failed, precision of both schemas should match")));
  const called answer =
      invoke(schema.dispatch(), merge, DISPATCH_METHOD, {of_long(0), of_dispatch(&schema.dispatch())});
  EXPECT_EQ(DISP_E_EXCEPTION, answer.status);
  EXPECT_EQ(E_FAIL, answer.code);
  EXPECT_EQ("Merge failed, precision of both schemas should match", answer.description);
  EXPECT_EQ("OvFile.OvSchema.1", answer.source);
  schema.get()->AddRef();
  EXPECT_EQ(1U, schema.get()->Release()) << "the argument was let go";
}

TEST_F(late_results, every_other_exception_stays_inside_too) {
  record().exception = std::make_exception_ptr(std::out_of_range("ov_size_t_2_long"));
  called answer = method(get_row_count);
  EXPECT_EQ(DISP_E_EXCEPTION, answer.status);
  EXPECT_EQ("ov_size_t_2_long", answer.description);
  record().exception = std::make_exception_ptr(std::bad_alloc());
  answer = method(get_row_count);
  EXPECT_EQ(E_OUTOFMEMORY, answer.code);
  record().exception = std::make_exception_ptr(7);
  answer = method(get_row_count);
  EXPECT_EQ(E_FAIL, answer.code);
  EXPECT_EQ("", answer.description);
}

TEST_F(late_results, may_all_be_left_out_by_the_caller) {
  record().answer = E_FAIL;
  DISPPARAMS none{};
  EXPECT_EQ(DISP_E_EXCEPTION, table_.dispatch().Invoke(get_row_count, IID_NULL, 0, DISPATCH_METHOD, &none,
                                                       nullptr, nullptr, nullptr));
  VARIANT word = of_type(VT_NULL);
  DISPPARAMS one{&word, nullptr, 1, 0};
  EXPECT_EQ(DISP_E_TYPEMISMATCH,
            table_.dispatch().Invoke(1, IID_NULL, 0, DISPATCH_METHOD, &one, nullptr, nullptr, nullptr));
}

}  // namespace
}  // namespace ovtest
