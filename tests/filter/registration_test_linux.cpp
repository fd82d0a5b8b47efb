// How the library finds the module without any registration.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "filter/filter_module.h"
#include "ovfile/filter.h"

namespace ovtest {
namespace {

TEST(filter_registration, is_a_file_beside_the_library) {
  const auto folder = std::filesystem::path(OVFILE_LIBRARY_PATH).parent_path();
  EXPECT_EQ(folder, std::filesystem::path(OVFILTER_PATH).parent_path());
  std::ifstream file(folder / "ovfile-components.reg");
  const std::string text(std::istreambuf_iterator<char>(file), {});
  EXPECT_EQ(
      "[HKEY_CLASSES_ROOT\\CLSID\\{4F18D7B2-93E6-4A01-BC57-E26A08F3D914}]\n"
      "@=\"OvFile filter evaluator\"\n"
      "\n"
      "[HKEY_CLASSES_ROOT\\CLSID\\{4F18D7B2-93E6-4A01-BC57-E26A08F3D914}\\InprocServer32]\n"
      "@=\"libovfilter.so\"\n"
      "\"ThreadingModel\"=\"Both\"\n",
      text);
}

TEST(filter_registration, needs_no_call) { expect_found_by_class_identifier(); }

TEST(filter_registration, called_for_has_nothing_to_do) {
  const auto call = [](const char* name) { return filter_entry<HRESULT()>(name)(); };
  EXPECT_EQ(S_OK, call("DllRegisterServer"));
  expect_found_by_class_identifier();
  EXPECT_EQ(S_OK, call("DllUnregisterServer"));
  EXPECT_EQ(S_OK, call("DllUnregisterServer"));
  expect_found_by_class_identifier();
}

}  // namespace
}  // namespace ovtest
