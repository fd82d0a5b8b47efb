// A logon session of its own for each test of the long field names. The limit is decided once per
// process, so what is asked of the library is asked in processes of their own: this program again, running
// the same test, whose fixture then only answers. The user's settings and the session's mark are as before
// at the end (on Linux they are not the user's in the first place).
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>

#include "platform/atoms.h"
#include "platform/registry.h"
#include "support/process.h"
#include "support/scratch_folder.h"

namespace ovtest {

class long_names_session : public testing::Test {
 protected:
  /// In the asked process: what it finds.
  virtual std::string answer(const std::string& question) = 0;

  void SetUp() override {
    if (const std::optional<std::string> question = asked()) {
      std::cout << begin_mark << answer(*question) << end_mark << std::endl;
      // A test that failed counts as not skipped: its body would ask again.
      if (HasFailure()) FAIL() << "answered";
      GTEST_SKIP() << "answered";
    }
    registry_ = setting("OVFILE_REGISTRY");
    atoms_ = setting("OVFILE_ATOMS");
    set_environment("OVFILE_ASKED_IN", session_.path());
    set_environment("OVFILE_REGISTRY", session_ / "registry.reg");
    set_environment("OVFILE_ATOMS", session_ / "atoms");
    master_ = master();
    current_ = current();
    marked_ = is_marked();
    begin_session();
  }
  void TearDown() override {
    if (asked()) return;
    set_environment("OVFILE_ASKED_IN", "");
    begin_session();
    if (master_) set_master(*master_);
    if (current_) set_current(*current_);
    if (marked_) mark();
    set_environment("OVFILE_REGISTRY", registry_);
    set_environment("OVFILE_ATOMS", atoms_);
  }

  /// The answer of a new process of this session.
  std::string ask(const std::string& question) const {
    if (asked()) return "asked itself";
    const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
    const std::string name = std::string(test.test_suite_name()) + "." + test.name();
    const auto program = std::filesystem::absolute(testing::internal::GetArgvs().front());
    const process_result ran =
        run_process({program.string(), "--gtest_filter=" + name, asking + question}, session_.path());
    const std::size_t begin = ran.output.find(begin_mark);
    const std::size_t end = ran.output.find(end_mark);
    if (ran.status != 0 || begin == std::string::npos || end == std::string::npos) {
      return "no answer: " + ran.output + ran.error;
    }
    const std::size_t first = begin + std::string(begin_mark).size();
    return ran.output.substr(first, end - first);
  }

  /// A session without settings and without a mark.
  static void begin_session() {
    ovf::delete_registry_tree(key());
    ovf::remove_global_atom(OLESTR("MaxFieldNameLength"));
  }
  static ovf::registry_key key() {
    return {ovf::registry_root::current_user, OLESTR("Software\\Orvexa\\OvFile")};
  }
  static bool is_marked() { return ovf::global_atom_exists(OLESTR("MaxFieldNameLength")); }
  static bool mark() { return ovf::add_global_atom(OLESTR("MaxFieldNameLength")); }
  static std::optional<std::uint32_t> master() {
    return ovf::registry_number(key(), OLESTR("UseLongFieldNamesMaster"));
  }
  static std::optional<std::uint32_t> current() {
    return ovf::registry_number(key(), OLESTR("UseLongFieldNamesCurrent"));
  }
  static bool set_master(std::uint32_t value) {
    return ovf::set_registry_number(key(), OLESTR("UseLongFieldNamesMaster"), value);
  }
  static bool set_current(std::uint32_t value) {
    return ovf::set_registry_number(key(), OLESTR("UseLongFieldNamesCurrent"), value);
  }

  scratch_folder session_;

 private:
  static constexpr const char* asking = "ask:";
  static constexpr const char* begin_mark = "<<answer ";
  static constexpr const char* end_mark = " answer>>";

  static std::string setting(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
  }
  static std::optional<std::string> asked() {
    const std::string last = testing::internal::GetArgvs().back();
    if (last.rfind(asking, 0) != 0) return {};
    return last.substr(std::string(asking).size());
  }

  std::string registry_;
  std::string atoms_;
  std::optional<std::uint32_t> master_;
  std::optional<std::uint32_t> current_;
  bool marked_ = false;
};

}  // namespace ovtest
