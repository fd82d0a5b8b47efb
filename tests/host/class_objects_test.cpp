// Entry points as a host meets them.
#include "host/host_table.h"

namespace ovtest {
namespace {

class class_objects : public host_test {};

TEST_F(class_objects, of_its_classes_and_of_no_other) {
  for (const CLSID& known : {CLSID_OvTable, CLSID_OvSchema, CLSID_OvTableADO}) {
    void* factory = nullptr;
    EXPECT_EQ(S_OK, call_.get_class_object(known, IID_IClassFactory, &factory));
    ASSERT_NE(nullptr, factory);
    static_cast<IClassFactory*>(factory)->Release();
  }
  void* factory = this;
  EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, call_.get_class_object(IID_IOvTable, IID_IClassFactory, &factory));
  EXPECT_EQ(nullptr, factory) << "an out pointer is null after a failure";
}

TEST_F(class_objects, of_an_interface_that_they_lack) {
  void* found = this;
  EXPECT_EQ(E_NOINTERFACE, call_.get_class_object(CLSID_OvTable, IID_IOvTable, &found));
  EXPECT_EQ(nullptr, found);
  EXPECT_EQ(E_POINTER, call_.get_class_object(CLSID_OvTable, IID_IClassFactory, nullptr));
}

TEST_F(class_objects, lock_the_module) {
  void* found = nullptr;
  ASSERT_EQ(S_OK, call_.get_class_object(CLSID_OvSchema, IID_IClassFactory, &found));
  auto* factory = static_cast<IClassFactory*>(found);
  EXPECT_EQ(S_OK, factory->LockServer(1));
  factory->Release();
  EXPECT_EQ(S_FALSE, call_.can_unload_now());
  ASSERT_EQ(S_OK, call_.get_class_object(CLSID_OvSchema, IID_IClassFactory, &found));
  factory = static_cast<IClassFactory*>(found);
  EXPECT_EQ(S_OK, factory->LockServer(0));
  factory->Release();
}

/// A whole life in a host: loaded, used, unloaded, loaded again.
TEST(library, can_be_loaded_again_after_it_was_unloaded) {
  for (int round = 0; round < 3; ++round) {
    const loaded_library library(OVFILE_LIBRARY_PATH);
    const host_functions call(library);
    void* factory = nullptr;
    void* schema = nullptr;
    ASSERT_EQ(S_OK, call.get_class_object(CLSID_OvSchema, IID_IClassFactory, &factory));
    ASSERT_EQ(S_OK, static_cast<IClassFactory*>(factory)->CreateInstance(nullptr, IID_IUnknown, &schema));
    static_cast<IClassFactory*>(factory)->Release();
    EXPECT_EQ(S_FALSE, call.can_unload_now());
    static_cast<IUnknown*>(schema)->Release();
    EXPECT_EQ(S_OK, call.can_unload_now());
  }
}

}  // namespace
}  // namespace ovtest
