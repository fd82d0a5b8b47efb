// What the module writes into the registry, and takes out again.
#include <gtest/gtest.h>

#include <string>

#include "filter/filter_module.h"
#include "ovfile/filter.h"

namespace ovtest {
namespace {

const wchar_t* const class_key = L"CLSID\\{4F18D7B2-93E6-4A01-BC57-E26A08F3D914}";
const wchar_t* const server_key = L"CLSID\\{4F18D7B2-93E6-4A01-BC57-E26A08F3D914}\\InprocServer32";

std::wstring text_in(const wchar_t* key, const wchar_t* name) {
  wchar_t text[1024] = L"";
  DWORD size = sizeof text;
  const LSTATUS status = RegGetValueW(HKEY_CLASSES_ROOT, key, name, RRF_RT_REG_SZ, nullptr, text, &size);
  return status == ERROR_SUCCESS ? text : L"(none)";
}

HRESULT call(const char* name) { return filter_entry<HRESULT STDAPICALLTYPE()>(name)(); }

// One test for all of it: other tests run at the same time, and there is one registry.
TEST(filter_registration, writes_the_class_which_is_found_until_it_is_removed) {
  ASSERT_EQ(S_OK, call("DllRegisterServer"));
  EXPECT_EQ(L"OvFile filter evaluator", text_in(class_key, nullptr));
  EXPECT_EQ(L"Both", text_in(server_key, L"ThreadingModel"));
  const std::wstring path = text_in(server_key, nullptr);
  EXPECT_EQ(L"OvFilter.dll", path.substr(path.rfind(L'\\') + 1));
  EXPECT_NE(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(path.c_str()));
  expect_found_by_class_identifier();
  ASSERT_EQ(S_OK, call("DllUnregisterServer"));
  EXPECT_EQ(L"(none)", text_in(class_key, nullptr));
  void* made = nullptr;
  ASSERT_GE(CoInitialize(nullptr), 0);
  EXPECT_EQ(REGDB_E_CLASSNOTREG,
            CoCreateInstance(CLSID_OvFilter, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, &made));
  CoUninitialize();
  EXPECT_EQ(S_OK, call("DllUnregisterServer")) << "what is not there needs no removing";
  HKEY parent = nullptr;
  EXPECT_EQ(ERROR_SUCCESS, RegOpenKeyExW(HKEY_CLASSES_ROOT, L"CLSID", 0, KEY_READ, &parent));
  RegCloseKey(parent);
}

}  // namespace
}  // namespace ovtest
