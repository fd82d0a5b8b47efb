// The system lets a module go once nothing of it is held, and not before.
#include "host/host_table.h"

namespace ovtest {
namespace {

/// As a host that makes its objects by their class identifier and never sees the module. The registration
/// belongs to all programs of the system: tests of this name run alone.
class registration_unloading : public testing::Test {
 protected:
  void SetUp() override {
    call_module("DllRegisterServer");
    ASSERT_EQ(S_OK, CoInitialize(nullptr));
    ASSERT_FALSE(is_loaded());
  }
  void TearDown() override {
    CoUninitialize();
    FreeLibrary(automation_);
    call_module("DllUnregisterServer");
  }

  static void call_module(const char* name) {
    const loaded_library library(OVFILE_LIBRARY_PATH);
    EXPECT_EQ(S_OK, library.exported<HRESULT STDAPICALLTYPE()>(name)());
  }
  static bool is_loaded() { return GetModuleHandleA("OvFile.dll") != nullptr; }
  static IDispatch* make() {
    void* made = nullptr;
    EXPECT_EQ(S_OK, CoCreateInstance(CLSID_OvTable, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &made));
    return static_cast<IDispatch*>(made);
  }

  /// Where descriptions come from. Every host that reads them has it for itself.
  const HMODULE automation_ = LoadLibraryA("oleaut32.dll");
};

TEST_F(registration_unloading, waits_for_the_last_object) {
  IDispatch* object = make();
  ASSERT_NE(nullptr, object);
  CoFreeUnusedLibrariesEx(0, 0);
  EXPECT_TRUE(is_loaded());
  EXPECT_EQ(0U, object->Release());
  CoFreeUnusedLibrariesEx(0, 0);
  EXPECT_FALSE(is_loaded());
  object = make();
  ASSERT_NE(nullptr, object) << "loaded anew";
  object->Release();
  CoFreeUnusedLibrariesEx(0, 0);
  EXPECT_FALSE(is_loaded());
}

TEST_F(registration_unloading, waits_for_a_lock) {
  void* found = nullptr;
  ASSERT_EQ(S_OK, CoGetClassObject(CLSID_OvTable, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory, &found));
  auto* factory = static_cast<IClassFactory*>(found);
  EXPECT_EQ(S_OK, factory->LockServer(TRUE));
  factory->Release();
  CoFreeUnusedLibrariesEx(0, 0);
  ASSERT_TRUE(is_loaded());
  ASSERT_EQ(S_OK, CoGetClassObject(CLSID_OvTable, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory, &found));
  factory = static_cast<IClassFactory*>(found);
  EXPECT_EQ(S_OK, factory->LockServer(FALSE));
  factory->Release();
  CoFreeUnusedLibrariesEx(0, 0);
  EXPECT_FALSE(is_loaded());
}

/// A description is the system's object, which reads the module's file by itself: it outlives the module.
TEST_F(registration_unloading, does_not_wait_for_descriptions) {
  IDispatch* object = make();
  ASSERT_NE(nullptr, object);
  ITypeInfo* info = nullptr;
  EXPECT_EQ(S_OK, object->GetTypeInfo(0, 0, &info));
  object->Release();
  CoFreeUnusedLibrariesEx(0, 0);
  EXPECT_FALSE(is_loaded());
  ASSERT_NE(nullptr, info);
  TYPEATTR* attributes = nullptr;
  ASSERT_EQ(S_OK, info->GetTypeAttr(&attributes));
  EXPECT_TRUE(attributes->guid == IID_IOvTable);
  info->ReleaseTypeAttr(attributes);
  info->Release();
}

}  // namespace
}  // namespace ovtest
