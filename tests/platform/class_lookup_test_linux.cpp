// Where classes come from, in their order. The library's own entry point is a stand-in
// (library_entry_linux.cpp), whose table class answers.
#include <dlfcn.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include "environment_linux.h"
#include "ovfile/ovfile.h"
#include "platform/debug_channel.h"
#include "platform/module_path.h"
#include "platform/registry.h"
#include "test_object.h"

namespace {

using ovf::registry_key;
using ovf::registry_root;

constexpr CLSID foreign{0x11112222, 0x3333, 0x4444, {0x55, 0x55, 0x66, 0x66, 0x77, 0x77, 0x88, 0x88}};
constexpr const char16_t* foreign_key = u"CLSID\\{11112222-3333-4444-5555-666677778888}";

class class_lookup : public ovtest::environment_test {
 protected:
  class_lookup() { set("OVFILE_REGISTRY", (folder / "registry.reg").string()); }
  ~class_lookup() override {
    ovf::listen_to_debug_output({});
    std::filesystem::remove(beside());
  }

  static std::filesystem::path beside() {
    return std::filesystem::path(ovf::module_path()).parent_path() / "ovfile-components.reg";
  }
  static void register_module(const std::string& path) {
    ovf::set_registry_text({registry_root::classes, std::u16string(foreign_key) + u"\\InprocServer32"}, {},
                           ovf::wide_from_utf8(path));
  }
  /// The mathematical library's whole path.
  static std::string module_without_entry_point() {
    void* const library = dlopen("libm.so.6", RTLD_NOW | RTLD_LOCAL);
    link_map* found = nullptr;
    if (library == nullptr || dlinfo(library, RTLD_DI_LINKMAP, &found) != 0) return {};
    return found->l_name;
  }
  static HRESULT class_object(REFCLSID id, DWORD context = CLSCTX_INPROC_SERVER) {
    void* found = reinterpret_cast<void*>(1);
    const HRESULT status = CoGetClassObject(id, context, nullptr, IID_IClassFactory, &found);
    EXPECT_EQ(found == nullptr, FAILED(status));
    if (found != nullptr) static_cast<IUnknown*>(found)->Release();
    return status;
  }
};

TEST_F(class_lookup, finds_what_this_process_registered_until_it_is_revoked) {
  ovtest::test_class factory;
  DWORD cookie = 0;
  EXPECT_EQ(class_object(foreign), REGDB_E_CLASSNOTREG);
  ASSERT_EQ(CoRegisterClassObject(foreign, &factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie),
            S_OK);
  EXPECT_EQ(class_object(foreign), S_OK);
  EXPECT_EQ(class_object(foreign, CLSCTX_ALL), S_OK);
  EXPECT_EQ(class_object(foreign, CLSCTX_LOCAL_SERVER), REGDB_E_CLASSNOTREG);
  EXPECT_EQ(CoRevokeClassObject(cookie), S_OK);
  EXPECT_EQ(class_object(foreign), REGDB_E_CLASSNOTREG);
  EXPECT_EQ(CoRevokeClassObject(cookie), CO_E_OBJNOTREG);
  EXPECT_EQ(factory.references, 0u);
}

TEST_F(class_lookup, an_object_for_single_use_answers_once) {
  ovtest::test_class factory;
  DWORD cookie = 0;
  ASSERT_EQ(CoRegisterClassObject(foreign, &factory, CLSCTX_INPROC_SERVER, REGCLS_SINGLEUSE, &cookie), S_OK);
  EXPECT_EQ(class_object(foreign), S_OK);
  EXPECT_EQ(class_object(foreign), REGDB_E_CLASSNOTREG);
  EXPECT_EQ(CoRevokeClassObject(cookie), S_OK);
}

TEST_F(class_lookup, makes_objects_through_the_class_object) {
  ovtest::test_class factory;
  DWORD cookie = 0;
  ASSERT_EQ(CoRegisterClassObject(foreign, &factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie),
            S_OK);
  void* made = nullptr;
  EXPECT_EQ(CoCreateInstance(foreign, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &made), S_OK);
  EXPECT_EQ(made, static_cast<IDispatch*>(&factory.object));
  static_cast<IUnknown*>(made)->Release();
  EXPECT_EQ(CoCreateInstance(foreign, &factory, CLSCTX_INPROC_SERVER, IID_IUnknown, &made),
            CLASS_E_NOAGGREGATION);
  EXPECT_EQ(made, nullptr);
  EXPECT_EQ(CoCreateInstance(foreign, nullptr, CLSCTX_INPROC_SERVER, IID_IErrorInfo, &made), E_NOINTERFACE);
  EXPECT_EQ(made, nullptr);
  CoRevokeClassObject(cookie);
  EXPECT_EQ(factory.references, 0u);
}

TEST_F(class_lookup, knows_the_librarys_own_classes_without_registration) {
  EXPECT_EQ(class_object(CLSID_OvTable), S_OK);
  EXPECT_EQ(class_object(CLSID_OvTable, CLSCTX_LOCAL_SERVER), REGDB_E_CLASSNOTREG);
}

TEST_F(class_lookup, the_process_comes_before_the_library) {
  ovtest::test_class factory;
  DWORD cookie = 0;
  ASSERT_EQ(CoRegisterClassObject(CLSID_OvTable, &factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie),
            S_OK);
  void* made = nullptr;
  EXPECT_EQ(CoCreateInstance(CLSID_OvTable, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, &made), S_OK);
  EXPECT_EQ(made, static_cast<IUnknown*>(&factory.object));
  static_cast<IUnknown*>(made)->Release();
  CoRevokeClassObject(cookie);
}

TEST_F(class_lookup, a_module_that_cannot_be_loaded_says_why) {
  ovf::wide heard;
  ovf::listen_to_debug_output([&](ovf::wide_view message) { heard = message; });
  register_module("/nowhere/libmissing.so");
  EXPECT_EQ(class_object(foreign), CO_E_DLLNOTFOUND);
  EXPECT_NE(heard.find(u"libmissing.so"), ovf::wide::npos);
}

TEST_F(class_lookup, a_module_without_the_entry_point) {
  register_module(module_without_entry_point());
  EXPECT_EQ(class_object(foreign), CO_E_ERRORINDLL);
}

TEST_F(class_lookup, a_module_is_registered_with_its_whole_path) {
  ovf::wide heard;
  ovf::listen_to_debug_output([&](ovf::wide_view message) { heard = message; });
  for (const char* const path : {"libm.so.6", "./libm.so.6", "lib/libm.so.6"}) {
    heard.clear();
    register_module(path);
    EXPECT_EQ(class_object(foreign), CO_E_DLLNOTFOUND) << path;
    EXPECT_NE(heard.find(u"whole path"), ovf::wide::npos) << path;
  }
}

TEST_F(class_lookup, a_registry_that_others_can_write_leads_to_no_module) {
  register_module(module_without_entry_point());
  ASSERT_EQ(class_object(foreign), CO_E_ERRORINDLL);
  const std::string registry = (folder / "registry.reg").string();
  ASSERT_EQ(chmod(registry.c_str(), 0666), 0);
  EXPECT_EQ(class_object(foreign), REGDB_E_CLASSNOTREG);
  ASSERT_EQ(chmod(registry.c_str(), 0644), 0);
  ASSERT_EQ(class_object(foreign), CO_E_ERRORINDLL);
  if (geteuid() != 0) return;  // nobody else gives a file away
  constexpr uid_t other = 65534;
  ASSERT_EQ(chown(registry.c_str(), other, static_cast<gid_t>(-1)), 0);
  EXPECT_EQ(class_object(foreign), REGDB_E_CLASSNOTREG);
}

TEST_F(class_lookup, a_file_beside_the_library_comes_last_and_names_neighbours) {
  ovf::wide heard;
  ovf::listen_to_debug_output([&](ovf::wide_view message) { heard = message; });
  write(beside(),
        "[HKEY_CLASSES_ROOT\\CLSID\\{11112222-3333-4444-5555-666677778888}\\InprocServer32]\n"
        "@=\"libneighbour.so\"\n"
        "[HKEY_CLASSES_ROOT\\CLSID\\{11112222-3333-4444-5555-666677778888}\\ProgID]\n"
        "@=\"Test.Neighbour.1\"\n"
        "[HKEY_CLASSES_ROOT\\Test.Neighbour.1\\CLSID]\n"
        "@=\"{11112222-3333-4444-5555-666677778888}\"\n");
  EXPECT_EQ(class_object(foreign), CO_E_DLLNOTFOUND);
  EXPECT_NE(heard.find(ovf::wide_from_utf8((beside().parent_path() / "libneighbour.so").string())),
            ovf::wide::npos);

  CLSID id{};
  EXPECT_EQ(CLSIDFromProgID(u"test.neighbour.1", &id), S_OK);
  EXPECT_EQ(id, foreign);
  LPOLESTR name = nullptr;
  EXPECT_EQ(ProgIDFromCLSID(foreign, &name), S_OK);
  EXPECT_EQ(ovf::wide(name), u"Test.Neighbour.1");
  CoTaskMemFree(name);

  register_module(module_without_entry_point());
  EXPECT_EQ(class_object(foreign), CO_E_ERRORINDLL);
}

TEST_F(class_lookup, asks_a_registered_module) {
  void* library = dlopen(OVFILE_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) GTEST_SKIP() << "the library is not built: " << dlerror();
  dlclose(library);
  register_module(OVFILE_LIBRARY_PATH);
  EXPECT_EQ(class_object(foreign), CLASS_E_CLASSNOTAVAILABLE);
}

TEST_F(class_lookup, programmatic_identifiers_of_the_own_classes_need_no_registration) {
  CLSID id{};
  EXPECT_EQ(CLSIDFromProgID(u"OvFile.OvTable", &id), S_OK);
  EXPECT_EQ(id, CLSID_OvTable);
  EXPECT_EQ(CLSIDFromProgID(u"ovfile.ovschema.1", &id), S_OK);
  EXPECT_EQ(id, CLSID_OvSchema);
  EXPECT_EQ(CLSIDFromString(u"OvFile.OvTableADO", &id), S_OK);
  EXPECT_EQ(id, CLSID_OvTableADO);
  LPOLESTR name = nullptr;
  EXPECT_EQ(ProgIDFromCLSID(CLSID_OvTable, &name), S_OK);
  EXPECT_EQ(ovf::wide(name), u"OvFile.OvTable.1");
  CoTaskMemFree(name);
}

TEST_F(class_lookup, registered_programmatic_identifiers) {
  ovf::set_registry_text({registry_root::classes, u"Test.Foreign\\CLSID"}, {},
                         u"{11112222-3333-4444-5555-666677778888}");
  ovf::set_registry_text({registry_root::classes, u"Test.Ring\\CLSID"}, {}, u"Test.Ring");
  CLSID id{};
  EXPECT_EQ(CLSIDFromProgID(u"Test.Foreign", &id), S_OK);
  EXPECT_EQ(id, foreign);
  EXPECT_EQ(CLSIDFromProgID(u"Test.Ring", &id), CO_E_CLASSSTRING);
  EXPECT_EQ(CLSIDFromProgID(u"Test.Missing", &id), CO_E_CLASSSTRING);
  EXPECT_EQ(id, CLSID_NULL);
  EXPECT_EQ(CLSIDFromProgID(u"", &id), CO_E_CLASSSTRING);
  LPOLESTR name = nullptr;
  EXPECT_EQ(ProgIDFromCLSID(foreign, &name), REGDB_E_CLASSNOTREG);
  EXPECT_EQ(name, nullptr);
}

TEST_F(class_lookup, null_results_are_refused) {
  EXPECT_EQ(CoGetClassObject(CLSID_OvTable, CLSCTX_ALL, nullptr, IID_IUnknown, nullptr), E_POINTER);
  EXPECT_EQ(CoCreateInstance(CLSID_OvTable, nullptr, CLSCTX_ALL, IID_IUnknown, nullptr), E_POINTER);
  EXPECT_EQ(CLSIDFromProgID(u"OvFile.OvTable", nullptr), E_POINTER);
  EXPECT_EQ(ProgIDFromCLSID(CLSID_OvTable, nullptr), E_POINTER);
  ovtest::test_class factory;
  EXPECT_EQ(CoRegisterClassObject(foreign, &factory, CLSCTX_ALL, REGCLS_MULTIPLEUSE, nullptr), E_POINTER);
  DWORD cookie = 0;
  EXPECT_EQ(CoRegisterClassObject(foreign, nullptr, CLSCTX_ALL, REGCLS_MULTIPLEUSE, &cookie), E_INVALIDARG);
}

TEST(component_start, is_counted) {
  EXPECT_EQ(CoInitialize(nullptr), S_OK);
  EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_FALSE);
  CoUninitialize();
  CoUninitialize();
  CoUninitialize();
  EXPECT_EQ(CoInitialize(nullptr), S_OK);
  CoUninitialize();
}

}  // namespace
