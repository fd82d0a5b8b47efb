// Memory that runs out at every moment of a command's work: it does all of it and says so, or nothing, and
// says why. OVFILE_DENY_EVERY=1 denies each allocation in turn, which takes minutes; else some of them.
#include <cstdlib>

#include "command/command_test.h"
#include "support/sanitized.h"

namespace {

using names = std::vector<std::string>;

struct work {
  std::string name;
  names arguments;
  int status = 0;
  std::string from = "t.ovt";  ///< when this is opened the allocations are counted from
};

class denied_memory_test : public ovtest::command_test, public testing::WithParamInterface<work> {
 protected:
  struct outcome {
    int status;
    std::string output;
    std::string error;
    std::string table;
    names left;
  };

  void SetUp() override {
    command_test::SetUp();
    std::string csv = "HOLE,FROM,AU\n";
    for (int i = 0; i < 400; ++i) {
      csv += "DDH" + std::to_string(i % 40) + "," + std::to_string(i) + "," + std::to_string(i % 7) + "\n";
    }
    round_trip(csv);
    run_quietly({"import", "in.csv", "u.ovt"});
    table_ = read("t.ovt");
    write("cut.ovt", table_.substr(0, 4096 + 4096 / 2));
  }
  void TearDown() override { deny({}); }

  void deny(const std::string& nth) const {
    const auto library =
        std::filesystem::path(OVFILE_COMMAND_PATH).parent_path() / "fake" / "denied_malloc.so";
    ovtest::set_environment("LD_PRELOAD", nth.empty() ? "" : library);
    ovtest::set_environment("DENY_FROM", GetParam().from);
    ovtest::set_environment("DENY_NTH", nth);
    ovtest::set_environment("DENY_MARK", mark());
  }
  std::filesystem::path mark() const { return aside_ / "mark"; }

  outcome run_anew() const {
    write("t.ovt", table_);
    const ovtest::process_result end = run(GetParam().arguments);
    return {end.status, end.output, end.error, read("t.ovt"), files()};
  }

  std::string table_;
  ovtest::scratch_folder aside_;
};

TEST_P(denied_memory_test, all_is_done_or_nothing) {
  if (ovtest::is_sanitized) GTEST_SKIP() << "the sanitizer has an allocator of its own";
  const char* const asked = std::getenv("OVFILE_DENY_EVERY");
  const int every = asked != nullptr ? std::atoi(asked) : 11;
  const outcome whole = run_anew();
  ASSERT_EQ(whole.status, GetParam().status) << whole.error;
  for (int n = 1;; n += every) {
    ASSERT_LT(n, 1'000'000);
    SCOPED_TRACE("allocation " + std::to_string(n));
    std::filesystem::remove(mark());
    deny(std::to_string(n));
    const outcome now = run_anew();
    deny({});
    if (!std::filesystem::exists(mark())) break;
    EXPECT_EQ(now.left, whole.left);
    const bool is_done = now.status == whole.status && now.output == whole.output && now.table == whole.table;
    if (is_done && now.error == whole.error) continue;
    EXPECT_TRUE(now.status == 1 || now.status == 2) << now.status;
    EXPECT_NE(now.error, "");
    // Values that are set one after the other may have got into the file up to there, and a table that was
    // made anew may be one that could not be opened again, which is said.
    const bool is_new = now.error.find(", the new table ") != now.error.npos;
    if (GetParam().name != "set") {
      EXPECT_TRUE(now.table == (is_new ? whole.table : table_)) << now.error;
    }
    if (HasFailure()) break;
  }
}

INSTANTIATE_TEST_SUITE_P(
    commands, denied_memory_test,
    testing::Values(
        work{"set", {"set", "t.ovt", "AU=9", "--where", "HOLE = 'DDH3' OR AU > 5"}},
        work{"delete_rows", {"delete-rows", "t.ovt", "--where", "HOLE = 'DDH3'"}},
        work{"sort", {"sort", "t.ovt", "--by", "HOLE"}}, work{"rename", {"rename", "t.ovt", "AU", "GOLD"}},
        work{"truncate", {"truncate", "t.ovt", "--rows", "100"}},
        work{"export", {"export", "t.ovt", "out.csv", "--where", "AU > 5"}},
        work{"import", {"import", "in.csv", "t.ovt"}}, work{"alter", {"alter", "t.ovt", "--add", "CU=1"}},
        work{"add_implicit", {"add-implicit", "t.ovt", "SG=2.7"}},
        work{"default", {"default", "t.ovt", "AU=1"}}, work{"new", {"new", "t.ovt", "--template", "points"}},
        work{"verify", {"verify", "t.ovt"}}, work{"salvage", {"verify", "u.ovt", "--salvage", "t.ovt"}},
        work{"salvage_cut", {"verify", "cut.ovt", "--salvage", "t.ovt"}, 1, "cut.ovt"},
        work{"diff", {"diff", "t.ovt", "u.ovt", "--key", "HOLE,FROM"}}),
    [](const auto& each) { return each.param.name; });

}  // namespace
