// The module as a stranger loads it: by its path.
#include "filter/filter_module.h"
#include "filter/filter_test.h"
#include "ovfile/ovfile.h"

namespace ovtest {
namespace {

class filter_module : public testing::Test {
 protected:
  static HRESULT class_object_of(REFCLSID id, REFIID iid, void** out) {
    return filter_entry<HRESULT STDAPICALLTYPE(REFCLSID, REFIID, void**)>("DllGetClassObject")(id, iid, out);
  }
  static HRESULT call(const char* name) { return filter_entry<HRESULT STDAPICALLTYPE()>(name)(); }
};

TEST_F(filter_module, makes_evaluators) {
  void* found = nullptr;
  ASSERT_EQ(S_OK, class_object_of(CLSID_OvFilter, IID_IClassFactory, &found));
  auto* factory = static_cast<IClassFactory*>(found);
  ASSERT_EQ(S_OK, factory->CreateInstance(nullptr, IID_IOvFilter, &found));
  factory->Release();
  auto* filter = static_cast<IOvFilter*>(found);
  EXPECT_EQ(S_FALSE, call("DllCanUnloadNow"));
  EXPECT_EQ(S_OK, set_expression(*filter, "AU >= 1.5 AND ROCK = 'ORE'"));
  EXPECT_EQ((std::vector<std::string>{"AU", "ROCK"}), variables(*filter));
  EXPECT_EQ(1, evaluate(*filter, "1.5,ORE"));
  EXPECT_EQ(0, evaluate(*filter, "1.4,ORE"));
  EXPECT_EQ(E_FAIL, set_expression(*filter, "AU >="));
  EXPECT_STREQ("a value is missing at position 6", ovfile::error::take(E_FAIL).what());
  filter->Release();
  EXPECT_EQ(S_OK, call("DllCanUnloadNow"));
}

TEST_F(filter_module, has_no_other_class) {
  void* found = this;
  EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, class_object_of(CLSID_OvTable, IID_IClassFactory, &found));
  EXPECT_EQ(nullptr, found);
  found = this;
  EXPECT_EQ(E_NOINTERFACE, class_object_of(CLSID_OvFilter, IID_IOvFilter, &found));
  EXPECT_EQ(nullptr, found);
  EXPECT_EQ(E_POINTER, class_object_of(CLSID_OvFilter, IID_IClassFactory, nullptr));
}

}  // namespace
}  // namespace ovtest
