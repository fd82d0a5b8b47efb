// Class objects, and when the module may be unloaded.
#include <gtest/gtest.h>

#include "support/component.h"

namespace ovtest {
namespace {

ovfile::pointer<IClassFactory> class_object_of(REFCLSID class_id) {
  void* found = nullptr;
  EXPECT_EQ(S_OK, DllGetClassObject(class_id, IID_IClassFactory, &found));
  ovfile::pointer<IClassFactory> factory;
  *factory.out() = static_cast<IClassFactory*>(found);
  return factory;
}

class class_objects : public testing::TestWithParam<CLSID> {};

TEST_P(class_objects, make_objects) {
  const auto factory = class_object_of(GetParam());
  void* made = nullptr;
  ASSERT_EQ(S_OK, factory->CreateInstance(nullptr, IID_IDispatch, &made));
  EXPECT_EQ(0U, static_cast<IUnknown*>(made)->Release());
  EXPECT_EQ(E_POINTER, factory->CreateInstance(nullptr, IID_IDispatch, nullptr));
  made = this;
  EXPECT_EQ(E_NOINTERFACE, factory->CreateInstance(nullptr, IID_IClassFactory, &made));
  EXPECT_EQ(nullptr, made);
}

TEST_P(class_objects, answer_their_two_interfaces) {
  void* found = nullptr;
  ASSERT_EQ(S_OK, DllGetClassObject(GetParam(), IID_IUnknown, &found));
  auto* unknown = static_cast<IUnknown*>(found);
  const auto factory = class_object_of(GetParam());
  EXPECT_EQ(unknown, static_cast<IUnknown*>(factory.get()));
  unknown->Release();
  found = this;
  EXPECT_EQ(E_NOINTERFACE, factory->QueryInterface(IID_IDispatch, &found));
  EXPECT_EQ(nullptr, found);
  EXPECT_EQ(E_POINTER, factory->QueryInterface(IID_IUnknown, nullptr));
}

TEST_P(class_objects, keep_the_module_while_they_are_held) {
  ASSERT_EQ(S_OK, DllCanUnloadNow());
  {
    const auto factory = class_object_of(GetParam());
    EXPECT_EQ(S_FALSE, DllCanUnloadNow());
  }
  EXPECT_EQ(S_OK, DllCanUnloadNow());
}

TEST_P(class_objects, lock_the_module) {
  EXPECT_EQ(S_OK, class_object_of(GetParam())->LockServer(1));
  EXPECT_EQ(S_OK, class_object_of(GetParam())->LockServer(1));
  EXPECT_EQ(S_FALSE, DllCanUnloadNow());
  EXPECT_EQ(S_OK, class_object_of(GetParam())->LockServer(0));
  EXPECT_EQ(S_FALSE, DllCanUnloadNow());
  EXPECT_EQ(S_OK, class_object_of(GetParam())->LockServer(0));
  EXPECT_EQ(S_OK, DllCanUnloadNow());
}

TEST_P(class_objects, unlocked_once_too_often_hide_no_object) {
  EXPECT_EQ(S_OK, class_object_of(GetParam())->LockServer(0));
  EXPECT_EQ(S_OK, DllCanUnloadNow());
  void* made = nullptr;
  ASSERT_EQ(S_OK, class_object_of(GetParam())->CreateInstance(nullptr, IID_IUnknown, &made));
  EXPECT_EQ(S_FALSE, DllCanUnloadNow());
  EXPECT_EQ(S_OK, class_object_of(GetParam())->LockServer(0));
  EXPECT_EQ(S_FALSE, DllCanUnloadNow());
  static_cast<IUnknown*>(made)->Release();
  EXPECT_EQ(S_OK, DllCanUnloadNow());
  EXPECT_EQ(S_OK, class_object_of(GetParam())->LockServer(1));
  EXPECT_EQ(S_FALSE, DllCanUnloadNow()) << "a lock counts, whatever was unlocked before";
  EXPECT_EQ(S_OK, class_object_of(GetParam())->LockServer(0));
  EXPECT_EQ(S_OK, DllCanUnloadNow());
}

TEST_P(class_objects, live_objects_keep_the_module) {
  void* made = nullptr;
  ASSERT_EQ(S_OK, class_object_of(GetParam())->CreateInstance(nullptr, IID_IUnknown, &made));
  EXPECT_EQ(S_FALSE, DllCanUnloadNow());
  static_cast<IUnknown*>(made)->Release();
  EXPECT_EQ(S_OK, DllCanUnloadNow());
}

INSTANTIATE_TEST_SUITE_P(every_class, class_objects,
                         testing::Values(CLSID_OvTable, CLSID_OvSchema, CLSID_OvTableADO),
                         [](const auto& tested) -> std::string {
                           if (tested.param == CLSID_OvTable) return "OvTable";
                           return tested.param == CLSID_OvSchema ? "OvSchema" : "OvTableADO";
                         });

TEST(class_lookup, refuses_other_identifiers) {
  void* found = &found;
  EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, DllGetClassObject(IID_IOvTable, IID_IClassFactory, &found));
  EXPECT_EQ(nullptr, found);
  EXPECT_EQ(E_POINTER, DllGetClassObject(CLSID_OvTable, IID_IClassFactory, nullptr));
}

}  // namespace
}  // namespace ovtest
