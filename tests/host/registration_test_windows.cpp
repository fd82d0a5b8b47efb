// What registering changes in the registry: all of it before, between and after.
#include <algorithm>
#include <filesystem>
#include <sstream>
#include <vector>

#include "host/host_table.h"
#include "host/registry_snapshot_windows.h"

namespace ovtest {
namespace {

using lines = std::vector<std::string>;

const std::string table_id = "{3A9F6E21-C48B-4D07-B25E-91C7A3D0F468}";
const std::string schema_id = "{5C1E0A37-7D42-4E91-A3B6-2F8D64C09E15}";
const std::string records_id = "{E2086A4D-57B3-4C19-9F7E-3B51C8D06A24}";
const std::string library_id = "{9D63A5E7-14F0-4B2C-8E39-6A07C4B1D2F5}";
const std::string scriptable = "{7DD95801-9882-11CF-9FA9-00AA006C42C4}";
const std::string initializable = "{7DD95802-9882-11CF-9FA9-00AA006C42C4}";

std::string module_path() { return std::filesystem::path(OVFILE_LIBRARY_PATH).make_preferred().string(); }

/// A key, or a value with its text.
void add(lines& list, const std::string& below_classes) {
  list.push_back("+ HKLM\\Software\\Classes\\" + below_classes);
}
void add_key(lines& list, const std::string& key, const std::string& text) {
  add(list, key);
  add(list, key + "@ = " + text);
}

void add_class(lines& list, const std::string& name, const std::string& id) {
  const std::string versioned = "OvFile." + name + ".1\\";
  add_key(list, versioned, name + " Class");
  add_key(list, versioned + "CLSID\\", id);
  const std::string independent = "OvFile." + name + "\\";
  add_key(list, independent, name + " Class");
  add_key(list, independent + "CLSID\\", id);
  add_key(list, independent + "CurVer\\", "OvFile." + name + ".1");
  const std::string key = "CLSID\\" + id + "\\";
  add_key(list, key, name + " Class");
  add_key(list, key + "ProgID\\", "OvFile." + name + ".1");
  add_key(list, key + "VersionIndependentProgID\\", "OvFile." + name);
  add(list, key + "Programmable\\");
  add_key(list, key + "InprocServer32\\", module_path());
  add(list, key + "InprocServer32\\ThreadingModel = Apartment");
  add_key(list, key + "TypeLib\\", library_id);
  add(list, key + "Implemented Categories\\");
  add(list, key + "Implemented Categories\\" + scriptable + "\\");
  add(list, key + "Implemented Categories\\" + initializable + "\\");
}

void add_categories(lines& list) {
  const std::string key = "Component Categories\\";
  add(list, key + scriptable + "\\");
  add(list, key + scriptable + "\\409 = Controls that are safely scriptable");
  add(list, key + initializable + "\\");
  add(list, key + initializable + "\\409 = Controls safely initializable from persistent data");
}

// What the system writes for a type library and its interfaces, for 32-bit programs too.

void add_type_library(lines& list) {
  const std::string key = "TypeLib\\" + library_id + "\\";
  add(list, key);
  add_key(list, key + "1.0\\", "OvFile 1.0 Type Library");
  add(list, key + "1.0\\0\\");
  add_key(list, key + "1.0\\0\\win64\\", module_path());
  add_key(list, key + "1.0\\FLAGS\\", "8");
  add_key(list, key + "1.0\\HELPDIR\\", std::filesystem::path(module_path()).parent_path().string());
}

void add_interface(lines& list, const std::string& name, const std::string& id) {
  const std::string marshaller = "{00020424-0000-0000-C000-000000000046}";
  const std::string key = "Interface\\" + id + "\\";
  add_key(list, key, name);
  add_key(list, key + "ProxyStubClsid\\", marshaller);
  add_key(list, key + "ProxyStubClsid32\\", marshaller);
  add_key(list, key + "TypeLib\\", library_id);
  add(list, key + "TypeLib\\Version = 1.0");
}

lines type_library_entries() {
  lines list;
  add_type_library(list);
  add_interface(list, "IOvTable", "{6B91F3A0-D27C-4385-A4E6-0C9B75E21D38}");
  add_interface(list, "IOvSchema", "{C05B2E96-A831-47D4-95F2-1D6E8B37A0C2}");
  add_interface(list, "IOvTableADO", "{0F4C8B93-6A27-4E5D-B1C0-D83E29F7A615}");
  add_interface(list, "IZuCommonDataTable", "{2D7F4B16-8C3E-4F59-A0D2-6E91B5C87F34}");
  add_interface(list, "IZuCommonDataSchema", "{71C0A9E8-35B4-4D6F-92E7-0B4D8F1A6C53}");
  const lines own = list;
  const std::string classes = "Software\\Classes\\";
  for (const char* view : {"Software\\Classes\\Wow6432Node\\", "Software\\Wow6432Node\\Classes\\"}) {
    for (std::string line : own) list.push_back(line.replace(line.find(classes), classes.size(), view));
  }
  return list;
}

lines everything() {
  lines list = type_library_entries();
  add_class(list, "OvTable", table_id);
  add_class(list, "OvSchema", schema_id);
  add_class(list, "OvTableADO", records_id);
  add_categories(list);
  return list;
}

std::string sorted(lines list) {
  std::sort(list.begin(), list.end());
  std::string text;
  for (const std::string& line : list) text += line + '\n';
  return text;
}

std::string sorted(const std::string& text) {
  std::istringstream stream(text);
  lines list;
  for (std::string line; std::getline(stream, line);) {
    // Keys ignore case, and the system spells this one in more than one way.
    const std::size_t place = line.find("\\Typelib\\");
    if (place != std::string::npos) line[place + 5] = 'L';
    list.push_back(line);
  }
  return sorted(list);
}

class registration : public host_test {
 protected:
  void SetUp() override {
    host_test::SetUp();
    remove_everything();
  }
  void TearDown() override {
    remove_everything();
    host_test::TearDown();
  }

  /// The categories too, which unregistering leaves.
  void remove_everything() const {
    call("DllUnregisterServer");
    for (const wchar_t* key : {L"Component Categories\\{7DD95801-9882-11CF-9FA9-00AA006C42C4}",
                               L"Component Categories\\{7DD95802-9882-11CF-9FA9-00AA006C42C4}"}) {
      RegDeleteTreeW(HKEY_CLASSES_ROOT, key);
    }
  }

  HRESULT call(const char* name) const { return library_.exported<HRESULT STDAPICALLTYPE()>(name)(); }
};

TEST_F(registration, writes_the_entries_and_leaves_the_categories) {
  const registry_snapshot before = whole_registry();
  ASSERT_LT(1000U, before.size());
  ASSERT_EQ(S_OK, call("DllRegisterServer"));
  const registry_snapshot between = whole_registry();
  EXPECT_EQ(sorted(everything()), sorted(difference(before, between)));
  ASSERT_EQ(S_OK, call("DllRegisterServer"));
  EXPECT_EQ("", difference(between, whole_registry())) << "twice is as good as once";
  ASSERT_EQ(S_OK, call("DllUnregisterServer"));
  lines categories;
  add_categories(categories);
  EXPECT_EQ(sorted(categories), sorted(difference(before, whole_registry())));
  EXPECT_EQ(S_OK, call("DllUnregisterServer")) << "what is not there needs no removing";
  EXPECT_EQ(sorted(categories), sorted(difference(before, whole_registry())));
  EXPECT_NE(before.end(), before.find("HKLM\\Software\\Classes\\CLSID\\"));
}

TEST_F(registration, clears_a_class_of_what_an_earlier_version_left) {
  HKEY stale = nullptr;
  const wchar_t* const path = L"CLSID\\{3A9F6E21-C48B-4D07-B25E-91C7A3D0F468}\\LocalServer32";
  ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyW(HKEY_CLASSES_ROOT, path, &stale));
  RegCloseKey(stale);
  ASSERT_EQ(S_OK, call("DllRegisterServer"));
  EXPECT_EQ(ERROR_FILE_NOT_FOUND, RegOpenKeyExW(HKEY_CLASSES_ROOT, path, 0, KEY_READ, &stale));
}

TEST_F(registration, keeps_a_name_below_which_another_wrote) {
  HKEY icon = nullptr;
  ASSERT_EQ(S_OK, call("DllRegisterServer"));
  ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyW(HKEY_CLASSES_ROOT, L"OvFile.OvTable\\DefaultIcon", &icon));
  RegCloseKey(icon);
  ASSERT_EQ(S_OK, call("DllUnregisterServer"));
  EXPECT_EQ(ERROR_SUCCESS,
            RegOpenKeyExW(HKEY_CLASSES_ROOT, L"OvFile.OvTable\\DefaultIcon", 0, KEY_READ, &icon));
  RegCloseKey(icon);
  EXPECT_EQ(ERROR_FILE_NOT_FOUND,
            RegOpenKeyExW(HKEY_CLASSES_ROOT, L"OvFile.OvTable\\CurVer", 0, KEY_READ, &icon));
  EXPECT_EQ(ERROR_SUCCESS, RegDeleteTreeW(HKEY_CLASSES_ROOT, L"OvFile.OvTable"));
}

/// Stands for the root of all classes while it lives. A key that is gone with the session takes none below
/// it that stays.
class classes_elsewhere {
 public:
  explicit classes_elsewhere(DWORD options) {
    EXPECT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_CURRENT_USER, path, 0, nullptr, options, KEY_ALL_ACCESS,
                                             nullptr, &root_, nullptr));
    EXPECT_EQ(ERROR_SUCCESS, RegOverridePredefKey(HKEY_CLASSES_ROOT, root_));
  }
  classes_elsewhere(const classes_elsewhere&) = delete;
  classes_elsewhere& operator=(const classes_elsewhere&) = delete;
  ~classes_elsewhere() {
    EXPECT_EQ(ERROR_SUCCESS, RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr));
    RegCloseKey(root_);
    EXPECT_EQ(ERROR_SUCCESS, RegDeleteTreeW(HKEY_CURRENT_USER, path));
  }

  void make_passing(const wchar_t* name) const {
    HKEY made = nullptr;
    EXPECT_EQ(ERROR_SUCCESS, RegCreateKeyExW(root_, name, 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS,
                                             nullptr, &made, nullptr));
    RegCloseKey(made);
  }
  bool has(const std::string& name) const {
    HKEY found = nullptr;
    const bool there = RegOpenKeyExW(root_, std::wstring(name.begin(), name.end()).c_str(), 0, KEY_READ,
                                     &found) == ERROR_SUCCESS;
    if (there) RegCloseKey(found);
    return there;
  }

 private:
  static constexpr const wchar_t* path = L"Software\\ovfile-test-classes";
  HKEY root_ = nullptr;
};

constexpr HRESULT child_must_be_volatile = static_cast<HRESULT>(0x800703FDU);
constexpr HRESULT classes_without_categories = static_cast<HRESULT>(0x80040201U);

TEST_F(registration, that_cannot_be_written_fails) {
  const classes_elsewhere root(REG_OPTION_VOLATILE);
  EXPECT_EQ(child_must_be_volatile, call("DllRegisterServer"));
  EXPECT_FALSE(root.has("OvFile.OvTable.1"));
}

TEST_F(registration, without_the_categories_leaves_the_classes) {
  const classes_elsewhere root(REG_OPTION_NON_VOLATILE);
  root.make_passing(L"Component Categories");
  EXPECT_EQ(classes_without_categories, call("DllRegisterServer"));
  for (const std::string& id : {table_id, schema_id, records_id}) {
    EXPECT_TRUE(root.has("CLSID\\" + id + "\\InprocServer32")) << id;
    EXPECT_FALSE(root.has("CLSID\\" + id + "\\Implemented Categories")) << id;
  }
  EXPECT_TRUE(root.has("TypeLib\\" + library_id));
  EXPECT_FALSE(root.has("Component Categories\\" + scriptable));
  EXPECT_EQ(S_OK, call("DllUnregisterServer"));
  EXPECT_TRUE(root.has("CLSID"));
  EXPECT_FALSE(root.has("CLSID\\" + table_id));
}

}  // namespace
}  // namespace ovtest
