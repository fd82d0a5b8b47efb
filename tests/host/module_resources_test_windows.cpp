// What the system reads of the module without asking it: its messages, its type library, its version.
#include <regex>
#include <string>

#include "host/host_table.h"

namespace ovtest {
namespace {

std::string ascii(const wchar_t* text) {
  std::string result;
  for (; *text != 0; ++text) result += static_cast<char>(*text);
  return result;
}

/// As the build was told, with its parts.
std::smatch project_version(const std::string& build) {
  std::smatch found;
  EXPECT_TRUE(std::regex_search(build, found, std::regex(R"(VERSION (\d+)\.(\d+)\.(\d+))")));
  return found;
}

class module_resources : public testing::Test {
 protected:
  std::string string_of(UINT number) const {
    wchar_t text[1024] = L"?";
    LoadStringW(module_, number, text, 1024);
    return ascii(text);
  }
  std::string bytes_of(const wchar_t* name, const wchar_t* kind) const {
    const HRSRC found = FindResourceW(module_, name, kind);
    if (found == nullptr) return {};
    const auto* bytes = static_cast<const char*>(LockResource(LoadResource(module_, found)));
    return {bytes, SizeofResource(module_, found)};
  }
  /// A value of the version's texts in US English.
  std::string version_text(const std::string& name) const {
    const std::string version = bytes_of(MAKEINTRESOURCEW(1), RT_VERSION);
    std::wstring units(version.size() / sizeof(wchar_t), L'\0');
    memcpy(units.data(), version.data(), units.size() * sizeof(wchar_t));
    const std::size_t place = units.find(std::wstring(name.begin(), name.end()) + L'\0');
    if (place == std::wstring::npos) return {};
    // Behind the name's end mark, and what fills it up to four bytes.
    return ascii(units.c_str() + units.find_first_not_of(L'\0', place + name.size()));
  }

  loaded_library library_{OVFILE_LIBRARY_PATH};
  const HMODULE module_ = GetModuleHandleA("OvFile.dll");
};

TEST_F(module_resources, have_the_messages) {
  EXPECT_EQ("OvFile", string_of(100));
  EXPECT_EQ("SetColumn failed, file is open in read-only mode", string_of(101));
  EXPECT_EQ("", string_of(102));
}

TEST_F(module_resources, have_the_type_library_as_their_first) {
  EXPECT_EQ("MSFT", bytes_of(MAKEINTRESOURCEW(1), L"TYPELIB").substr(0, 4));
}

TEST_F(module_resources, have_the_version_of_the_project) {
  const bytes build = read_bytes(std::filesystem::path(OVFILE_SOURCE_DIR) / "CMakeLists.txt");
  const std::string text(build.begin(), build.end());
  const std::smatch version = project_version(text);
  const std::string whole = version.str().substr(std::string("VERSION ").size());
  EXPECT_EQ(whole, version_text("ProductVersion"));
  EXPECT_EQ(whole, version_text("FileVersion"));
  EXPECT_EQ("OvFile.dll", version_text("OriginalFilename"));

  const std::string resource = bytes_of(MAKEINTRESOURCEW(1), RT_VERSION);
  VS_FIXEDFILEINFO fixed{};
  constexpr char signature[] = {'\xBD', '\x04', '\xEF', '\xFE'};
  const std::size_t place = resource.find(std::string(signature, 4));
  ASSERT_NE(std::string::npos, place);
  memcpy(&fixed, resource.data() + place, sizeof fixed);
  EXPECT_EQ(std::stoul(version[1]), HIWORD(fixed.dwProductVersionMS));
  EXPECT_EQ(std::stoul(version[2]), LOWORD(fixed.dwProductVersionMS));
  EXPECT_EQ(std::stoul(version[3]), HIWORD(fixed.dwProductVersionLS));
}

}  // namespace
}  // namespace ovtest
