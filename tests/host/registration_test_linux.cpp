// What registering writes into the registry's file, and what unregistering leaves of it: the whole file
// before, between and after.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <vector>

#include "host/host_table.h"

namespace ovtest {
namespace {

class registration : public host_test {
 protected:
  void SetUp() override {
    host_test::SetUp();
    std::filesystem::remove(file_);
  }
  void TearDown() override {
    std::filesystem::remove(file_);
    host_test::TearDown();
  }

  HRESULT call(const char* name) const { return library_.exported<HRESULT()>(name)(); }

  std::string content() const {
    const bytes found = std::filesystem::exists(file_) ? read_bytes(file_) : bytes();
    return {found.begin(), found.end()};
  }

  /// Everything under the class, the module's own path among it.
  static std::string entries(const std::string& name, const std::string& id) {
    const std::string root = "[HKEY_CLASSES_ROOT\\";
    const std::string path =
        OVFILE_LIBRARY_PATH;  // which is a link to the file that has the version in its name
    return root + "OvFile." + name + ".1]\n@=\"" + name + " Class\"\n\n" +           //
           root + "OvFile." + name + ".1\\CLSID]\n@=\"" + id + "\"\n\n" +            //
           root + "OvFile." + name + "]\n@=\"" + name + " Class\"\n\n" +             //
           root + "OvFile." + name + "\\CLSID]\n@=\"" + id + "\"\n\n" +              //
           root + "OvFile." + name + "\\CurVer]\n@=\"OvFile." + name + ".1\"\n\n" +  //
           root + "CLSID\\" + id + "]\n@=\"" + name + " Class\"\n\n" +               //
           root + "CLSID\\" + id + "\\ProgID]\n@=\"OvFile." + name + ".1\"\n\n" +    //
           root + "CLSID\\" + id + "\\VersionIndependentProgID]\n@=\"OvFile." + name + "\"\n\n" + root +
           "CLSID\\" + id + "\\Programmable]\n\n" +  //
           root + "CLSID\\" + id + "\\InprocServer32]\n@=\"" + path + "\"\n" +
           "\"ThreadingModel\"=\"Apartment\"\n\n" +  //
           root + "CLSID\\" + id + "\\TypeLib]\n@=\"{9D63A5E7-14F0-4B2C-8E39-6A07C4B1D2F5}\"\n\n";
  }

  static std::string implemented(const std::string& id) {
    const std::string key = "[HKEY_CLASSES_ROOT\\CLSID\\" + id + "\\Implemented Categories\\";
    return key + "{7DD95801-9882-11CF-9FA9-00AA006C42C4}]\n\n" + key +
           "{7DD95802-9882-11CF-9FA9-00AA006C42C4}]\n";
  }

  static std::string categories() {
    return "[HKEY_CLASSES_ROOT\\Component Categories\\{7DD95801-9882-11CF-9FA9-00AA006C42C4}]\n"
           "\"409\"=\"Controls that are safely scriptable\"\n"
           "\n"
           "[HKEY_CLASSES_ROOT\\Component Categories\\{7DD95802-9882-11CF-9FA9-00AA006C42C4}]\n"
           "\"409\"=\"Controls safely initializable from persistent data\"\n";
  }

  /// With the empty line that parted them from what has gone.
  static std::string left_categories() { return categories() + "\n"; }

  static std::string classes() {
    return entries("OvTable", table) + entries("OvSchema", schema) + entries("OvTableADO", records);
  }

  static std::string everything() {
    return classes() + categories() + "\n" + implemented(schema) + "\n" + implemented(table) + "\n" +
           implemented(records);
  }

  /// What registering answers in a process that may write files of `bytes` at most.
  HRESULT registered_within(std::size_t bytes) const {
    int answer[2];
    EXPECT_EQ(0, pipe(answer));
    const pid_t child = fork();
    if (child == 0) {
      const rlimit limit{bytes, bytes};
      HRESULT status = E_UNEXPECTED;
      // Without the signal, the write itself fails.
      if (signal(SIGXFSZ, SIG_IGN) != SIG_ERR && setrlimit(RLIMIT_FSIZE, &limit) == 0) {
        status = call("DllRegisterServer");
      }
      _exit(write(answer[1], &status, sizeof status) == sizeof status ? 0 : 1);
    }
    close(answer[1]);
    HRESULT status = S_FALSE;
    EXPECT_EQ(static_cast<ssize_t>(sizeof status), read(answer[0], &status, sizeof status));
    close(answer[0]);
    int ended = 0;
    EXPECT_EQ(child, waitpid(child, &ended, 0));
    EXPECT_EQ(0, ended);
    return status;
  }

  static std::vector<std::string> sorted_lines(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
      if (!line.empty()) lines.push_back(line);
    }
    std::sort(lines.begin(), lines.end());
    return lines;
  }

  static constexpr const char* table = "{3A9F6E21-C48B-4D07-B25E-91C7A3D0F468}";
  static constexpr const char* schema = "{5C1E0A37-7D42-4E91-A3B6-2F8D64C09E15}";
  static constexpr const char* records = "{E2086A4D-57B3-4C19-9F7E-3B51C8D06A24}";
  std::filesystem::path file_ = std::getenv("OVFILE_REGISTRY");
};

TEST_F(registration, writes_the_entries_and_leaves_the_categories) {
  EXPECT_EQ("", content());
  ASSERT_EQ(S_OK, call("DllRegisterServer"));
  EXPECT_EQ(everything(), content());
  ASSERT_EQ(S_OK, call("DllUnregisterServer"));
  EXPECT_EQ(left_categories(), content());
}

TEST_F(registration, twice_is_as_good_as_once) {
  ASSERT_EQ(S_OK, call("DllRegisterServer"));
  ASSERT_EQ(S_OK, call("DllRegisterServer"));
  // Where a class was entered anew, its keys stand further down.
  EXPECT_EQ(sorted_lines(everything()), sorted_lines(content()));
  ASSERT_EQ(S_OK, call("DllUnregisterServer"));
  EXPECT_EQ(S_OK, call("DllUnregisterServer")) << "what is not there needs no removing";
  EXPECT_EQ(left_categories(), content());
}

TEST_F(registration, leaves_what_others_wrote) {
  const std::string others =
      "[HKEY_CURRENT_USER\\Software\\Orvexa\\OvFile]\n"
      "\"UseLongFieldNamesMaster\"=dword:00000001\n"
      "\n"
      "[HKEY_CLASSES_ROOT\\CLSID\\{00000000-0000-0000-0000-0000000000FF}]\n"
      "@=\"Another class\"\n";
  write_bytes(file_, bytes(others.begin(), others.end()));
  ASSERT_EQ(S_OK, call("DllRegisterServer"));
  EXPECT_EQ(others + "\n" + everything(), content());
  ASSERT_EQ(S_OK, call("DllUnregisterServer"));
  EXPECT_EQ(others + "\n" + left_categories(), content());
}

TEST_F(registration, clears_a_class_of_what_an_earlier_version_left) {
  const std::string stale =
      "[HKEY_CLASSES_ROOT\\CLSID\\{3A9F6E21-C48B-4D07-B25E-91C7A3D0F468}\\LocalServer32]\n"
      "@=\"/opt/old\"\n";
  write_bytes(file_, bytes(stale.begin(), stale.end()));
  ASSERT_EQ(S_OK, call("DllRegisterServer"));
  EXPECT_EQ(everything(), content());
}

TEST_F(registration, keeps_a_name_below_which_another_wrote) {
  ASSERT_EQ(S_OK, call("DllRegisterServer"));
  const std::string icon = "\n[HKEY_CLASSES_ROOT\\OvFile.OvTable\\DefaultIcon]\n@=\"table.ico\"\n";
  const std::string registered = content() + icon;
  write_bytes(file_, bytes(registered.begin(), registered.end()));
  ASSERT_EQ(S_OK, call("DllUnregisterServer"));
  EXPECT_EQ("[HKEY_CLASSES_ROOT\\OvFile.OvTable]\n@=\"OvTable Class\"\n\n" + categories() + icon, content());
}

TEST_F(registration, that_cannot_be_written_fails) {
  std::filesystem::create_directory(file_);
  EXPECT_EQ(E_FAIL, call("DllRegisterServer"));
  EXPECT_EQ(E_FAIL, call("DllUnregisterServer"));
}

TEST_F(registration, of_classes_without_room_enters_nothing) {
  EXPECT_EQ(E_FAIL, registered_within(classes().size() - 2));
  EXPECT_EQ("", content());
  EXPECT_FALSE(std::filesystem::exists(file_.string() + ".new"));
}

TEST_F(registration, without_room_for_the_categories_leaves_the_classes) {
  EXPECT_EQ(SELFREG_E_CLASS, registered_within(classes().size()));
  EXPECT_EQ(classes(), content() + "\n");
}

TEST_F(registration, without_room_for_what_classes_implement_leaves_the_classes_and_categories) {
  EXPECT_EQ(SELFREG_E_CLASS, registered_within(everything().size() - 1));
  EXPECT_EQ(classes() + categories(), content());
}

TEST_F(registration, leaves_the_key_of_all_classes) {
  const std::string key = "[HKEY_CLASSES_ROOT\\CLSID]\n@=\"all classes\"\n";
  write_bytes(file_, bytes(key.begin(), key.end()));
  ASSERT_EQ(S_OK, call("DllRegisterServer"));
  EXPECT_EQ(key + "\n" + everything(), content());
  ASSERT_EQ(S_OK, call("DllUnregisterServer"));
  EXPECT_EQ(key + "\n" + left_categories(), content());
}

/// Creates by name, through the runtime that the library brings along.
TEST_F(registration, classes_are_created_by_their_names) {
  ASSERT_EQ(S_OK, call("DllRegisterServer"));
  const auto find = library_.runtime<decltype(::CLSIDFromProgID)>("CLSIDFromProgID");
  const auto create = library_.runtime<decltype(::CoCreateInstance)>("CoCreateInstance");
  for (const auto& [name, expected] :
       {std::pair(u"OvFile.OvTable", CLSID_OvTable), std::pair(u"ovfile.ovschema.1", CLSID_OvSchema),
        std::pair(u"OvFile.OvTableADO", CLSID_OvTableADO)}) {
    CLSID id{};
    void* made = nullptr;
    EXPECT_EQ(S_OK, find(name, &id));
    EXPECT_TRUE(id == expected);
    ASSERT_EQ(S_OK, create(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &made));
    EXPECT_EQ(0U, static_cast<IDispatch*>(made)->Release());
  }
}

}  // namespace
}  // namespace ovtest
