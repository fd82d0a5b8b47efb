// The object and its class object, as parts of this program.
#include "filter/class_object.h"
#include "filter/filter_test.h"
#include "filter/module_count.h"

namespace ovtest {
namespace {

using ovf::filter::class_object;
using ovf::filter::may_unload;
using ovf::filter::module_count;

TEST(filter_object, has_its_interfaces_and_one_identity) {
  const auto filter = make_filter();
  void* identity = nullptr;
  ASSERT_EQ(S_OK, filter->QueryInterface(IID_IUnknown, &identity));
  for (const IID& id : {IID_IOvFilter, IID_IOvFilterValues, IID_ISupportErrorInfo}) {
    void* found = nullptr;
    ASSERT_EQ(S_OK, filter->QueryInterface(id, &found));
    void* same = nullptr;
    EXPECT_EQ(S_OK, static_cast<IUnknown*>(found)->QueryInterface(IID_IUnknown, &same));
    EXPECT_EQ(identity, same);
    void* back = nullptr;
    EXPECT_EQ(S_OK, static_cast<IUnknown*>(found)->QueryInterface(IID_IOvFilter, &back));
    EXPECT_EQ(filter.get(), back);
    for (void* one : {same, back, found}) static_cast<IUnknown*>(one)->Release();
  }
  static_cast<IUnknown*>(identity)->Release();
  void* found = identity;
  EXPECT_EQ(E_NOINTERFACE, filter->QueryInterface(IID_IDispatch, &found));
  EXPECT_EQ(nullptr, found);
  EXPECT_EQ(E_POINTER, filter->QueryInterface(IID_IUnknown, nullptr));
}

TEST(filter_object, counts_its_references_and_keeps_the_module) {
  const LONG before = module_count();
  auto filter = make_filter();
  EXPECT_EQ(before + 1, module_count());
  EXPECT_EQ(2U, filter->AddRef());
  const auto values = values_of(filter);
  EXPECT_EQ(2U, filter->Release());
  filter = {};
  EXPECT_EQ(before + 1, module_count());
  EXPECT_EQ(2U, values->AddRef());
  EXPECT_EQ(1U, values->Release());
}

TEST(filter_object, refuses_missing_places) {
  const auto filter = make_filter();
  const auto values = values_of(filter);
  ASSERT_EQ(S_OK, set_expression(*filter.get(), "A"));
  EXPECT_EQ(E_POINTER, filter->Evaluate(nullptr, nullptr));
  EXPECT_EQ(E_POINTER, filter->GetVariableName(0, nullptr));
  EXPECT_EQ(E_POINTER, filter->GetVariableCount(nullptr));
  EXPECT_EQ(E_POINTER, values->Test(nullptr));
}

TEST(filter_object, tells_which_interfaces_report_errors) {
  const auto filter = make_filter();
  void* found = nullptr;
  ASSERT_EQ(S_OK, filter->QueryInterface(IID_ISupportErrorInfo, &found));
  auto* support = static_cast<ISupportErrorInfo*>(found);
  EXPECT_EQ(S_OK, support->InterfaceSupportsErrorInfo(IID_IOvFilter));
  EXPECT_EQ(S_OK, support->InterfaceSupportsErrorInfo(IID_IOvFilterValues));
  EXPECT_EQ(S_FALSE, support->InterfaceSupportsErrorInfo(IID_IDispatch));
  support->Release();
}

TEST(filter_object, has_its_methods_in_their_slots) {
  const auto filter = make_filter();
  const auto values = values_of(filter);
  ASSERT_EQ(S_OK, set_expression(*filter.get(), "A > 1"));
  using count_function = HRESULT(STDMETHODCALLTYPE*)(IOvFilter*, LONG*);
  using evaluate_function = HRESULT(STDMETHODCALLTYPE*)(IOvFilter*, BSTR, SHORT*);
  using number_function = HRESULT(STDMETHODCALLTYPE*)(IOvFilterValues*, LONG, double);
  using test_function = HRESULT(STDMETHODCALLTYPE*)(IOvFilterValues*, SHORT*);
  void** slots = *reinterpret_cast<void***>(filter.get());
  LONG count = 0;
  EXPECT_EQ(S_OK, reinterpret_cast<count_function>(slots[7])(filter.get(), &count));
  EXPECT_EQ(1, count);
  SHORT result = 0;
  const ovfile::text list(std::string_view("2"));
  EXPECT_EQ(S_OK, reinterpret_cast<evaluate_function>(slots[4])(filter.get(), list.get(), &result));
  EXPECT_EQ(1, result);
  slots = *reinterpret_cast<void***>(values.get());
  EXPECT_EQ(S_OK, reinterpret_cast<number_function>(slots[3])(values.get(), 0, 0.5));
  EXPECT_EQ(S_OK, reinterpret_cast<test_function>(slots[6])(values.get(), &result));
  EXPECT_EQ(0, result);
}

TEST(filter_class, makes_objects_but_not_inside_others) {
  IClassFactory& factory = class_object();
  void* made = nullptr;
  ASSERT_EQ(S_OK, factory.CreateInstance(nullptr, IID_IOvFilterValues, &made));
  EXPECT_EQ(0U, static_cast<IUnknown*>(made)->Release());
  EXPECT_EQ(CLASS_E_NOAGGREGATION, factory.CreateInstance(&factory, IID_IUnknown, &made));
  EXPECT_EQ(nullptr, made);
  made = &factory;
  EXPECT_EQ(E_NOINTERFACE, factory.CreateInstance(nullptr, IID_IDispatch, &made));
  EXPECT_EQ(nullptr, made);
  EXPECT_EQ(E_POINTER, factory.CreateInstance(nullptr, IID_IUnknown, nullptr));
}

TEST(filter_class, keeps_the_module_by_references_and_locks) {
  IClassFactory& factory = class_object();
  const LONG before = module_count();
  void* found = nullptr;
  ASSERT_EQ(S_OK, factory.QueryInterface(IID_IClassFactory, &found));
  EXPECT_EQ(&factory, found);
  EXPECT_EQ(before + 1, module_count());
  EXPECT_EQ(0U, factory.Release());
  EXPECT_EQ(before, module_count());
  EXPECT_TRUE(may_unload());
  factory.LockServer(1);
  EXPECT_FALSE(may_unload());
  factory.LockServer(0);
  EXPECT_TRUE(may_unload());
  EXPECT_EQ(E_NOINTERFACE, factory.QueryInterface(IID_IOvFilter, &found));
  EXPECT_EQ(nullptr, found);
  EXPECT_EQ(E_POINTER, factory.QueryInterface(IID_IUnknown, nullptr));
}

TEST(filter_class, unlocked_once_too_often_hides_no_object) {
  IClassFactory& factory = class_object();
  EXPECT_EQ(S_OK, factory.LockServer(0));
  EXPECT_TRUE(may_unload());
  auto filter = make_filter();
  EXPECT_FALSE(may_unload());
  EXPECT_EQ(S_OK, factory.LockServer(0));
  EXPECT_FALSE(may_unload());
  filter = {};
  EXPECT_TRUE(may_unload());
  EXPECT_EQ(S_OK, factory.LockServer(1));
  EXPECT_FALSE(may_unload());
  EXPECT_EQ(S_OK, factory.LockServer(0));
  EXPECT_TRUE(may_unload());
}

}  // namespace
}  // namespace ovtest
