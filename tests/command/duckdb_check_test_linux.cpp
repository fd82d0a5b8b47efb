// Libraries that are damaged, and programs that end as they may.
#include <fstream>

#include "command/command_test.h"
#include "command/duckdb/duckdb_check.h"
#include "command/duckdb_for_tests.h"
#include "command/failure.h"
#include "command/kept_variables.h"

namespace {

namespace fs = std::filesystem;
using command::duckdb_trial;
using command::duckdb_verdict;
using names = std::vector<std::string>;

class duckdb_damage_test : public ovtest::command_test {
 protected:
  duckdb_damage_test() {
    ovtest::set_environment("XDG_DATA_HOME", folder() / "data");
    ovtest::set_environment("TMPDIR", temporary_.path());
    write("t.csv", "A\n1\n");
    run_quietly({"import", "t.csv", "t.ovt"});
    write("t.parquet", "PAR1");
  }
  ~duckdb_damage_test() override {
    EXPECT_TRUE(fs::is_empty(temporary_.path())) << "temporary files are left";
    ovtest::set_environment("TMPDIR", usual_);
  }

  fs::path library() const { return folder() / "libduckdb.so"; }

  /// Writes over a part of the library in the test's folder, which keeps its size.
  void damage(std::streamoff at, std::size_t bytes, bool zeros) const {
    std::string text(bytes, '\0');
    unsigned state = 1;
    for (char& c : text) c = zeros ? '\0' : static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
    std::fstream file(library(), std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(at);
    file << text;
  }

  /// Takes a copy of the real library; false where there is none.
  bool take_real_library() const {
    const auto real = ovtest::duckdb_for_tests();
    if (!real) return false;
    fs::copy_file(*real, library(), fs::copy_options::overwrite_existing);
    ovtest::set_environment("OVFILE_DUCKDB", library());
    return true;
  }

  /// The reason in the message.
  std::string expect_damaged(const names& arguments) const {
    const ovtest::process_result result = run(arguments);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "");
    const std::string beginning = "ovfile: " + library().string() + " is damaged (";
    const std::string end =
        "); `ovfile setup sql --folder " + folder().path().string() + "` fetches DuckDB's library anew\n";
    EXPECT_EQ(result.error.find(beginning), 0u) << result.error;
    EXPECT_EQ(result.error.rfind(end), result.error.size() - end.size()) << result.error;
    return result.error.substr(beginning.size(), result.error.size() - beginning.size() - end.size());
  }

  /// What is thought of a program that is this script, in place of a trial.
  duckdb_trial judged(const std::string& script,
                      std::chrono::milliseconds limit = std::chrono::minutes(1)) const {
    write("program", "#!/bin/sh\n" + script + "\n");
    fs::permissions(folder() / "program", fs::perms::owner_all);
    return command::try_duckdb("x.so", (folder() / "program").string(), limit);
  }

  ovtest::kept_variables kept_{{"OVFILE_DUCKDB", "XDG_DATA_HOME"}};
  fs::path usual_ = fs::temp_directory_path();
  ovtest::scratch_folder temporary_;
};

TEST_F(duckdb_damage_test, wherever_the_known_library_is_damaged_it_is_told) {
  if (!take_real_library()) GTEST_SKIP() << "OVFILE_DUCKDB names no library";
  if (fs::file_size(library()) != 70'546'800) GTEST_SKIP() << "OVFILE_DUCKDB names another library";
  EXPECT_EQ(run_quietly({"sql", "select 1 as A", "-o", "csv"}), "A\n1\n");
  for (const std::streamoff megabyte : {6, 35, 66}) {
    ASSERT_TRUE(take_real_library());
    damage(megabyte << 20, 1 << 16, megabyte % 2 == 0);
    EXPECT_EQ(expect_damaged({"sql", "select 1"}), "its digest is not that of 1.5.6-r.1") << megabyte;
  }
  EXPECT_EQ(expect_damaged({"export", "t.ovt", "a.parquet"}), "its digest is not that of 1.5.6-r.1");
  EXPECT_EQ(expect_damaged({"import", "t.parquet", "a.ovt"}), "its digest is not that of 1.5.6-r.1");
  EXPECT_EQ(files(), (names{"data", "libduckdb.so", "t.csv", "t.ovt", "t.parquet"}));
  ASSERT_TRUE(take_real_library());
  EXPECT_EQ(run_quietly({"sql", "select 1 as A", "-o", "csv"}), "A\n1\n");
}

TEST_F(duckdb_damage_test, another_library_is_tried) {
  if (!take_real_library()) GTEST_SKIP() << "OVFILE_DUCKDB names no library";
  const auto make_other = [this] { std::ofstream(library(), std::ios::app | std::ios::binary) << "more"; };
  make_other();
  EXPECT_EQ(run_quietly({"sql", "select 1 as A", "-o", "csv"}), "A\n1\n");
  for (const bool zeros : {true, false}) {
    ASSERT_TRUE(take_real_library());
    make_other();
    damage(24 << 20, 8 << 20, zeros);
    EXPECT_EQ(expect_damaged({"sql", "select 1"}).find("a trial of it ended with "), 0u);
    expect_damaged({"export", "t.ovt", "a.parquet"});
    expect_damaged({"import", "t.parquet", "a.ovt"});
  }
  EXPECT_EQ(files(), (names{"data", "libduckdb.so", "t.csv", "t.ovt", "t.parquet"}));
}

TEST_F(duckdb_damage_test, a_trial_is_judged_by_its_end) {
  const auto expect = [this](const std::string& script, duckdb_verdict verdict, const std::string& words) {
    const duckdb_trial trial = judged(script);
    EXPECT_EQ(trial.verdict, verdict) << script;
    EXPECT_EQ(trial.words, words) << script;
  };
  expect("echo 1.5.6", duckdb_verdict::good, "1.5.6");
  expect("echo ovfile: x.so is no library; exit 1", duckdb_verdict::useless, "x.so is no library");
  expect("kill -SEGV $$", duckdb_verdict::damaged, "a trial of it ended with 139");
  expect("kill -BUS $$", duckdb_verdict::damaged, "a trial of it ended with 135");
  expect("kill -ABRT $$", duckdb_verdict::damaged, "a trial of it ended with 134");
  expect("echo terminate called; exit 1", duckdb_verdict::damaged, "a trial of it ended with 1");
  expect("exit 5", duckdb_verdict::damaged, "a trial of it ended with 5");
  expect("kill -KILL $$", duckdb_verdict::unknown, "a trial of x.so was ended with 137");
  expect("kill -TERM $$", duckdb_verdict::unknown, "a trial of x.so was ended with 143");
  expect("printf 'ovfile: x.so lacks \\377\\n'; exit 1", duckdb_verdict::damaged,
         "there is no sense in its names");
  expect("printf 'ovfile: x.so lacks \\001\\n'; exit 1", duckdb_verdict::damaged,
         "there is no sense in its names");
}

TEST_F(duckdb_damage_test, a_trial_that_comes_to_no_end_is_given_up) {
  const duckdb_trial trial = judged("exec sleep 100", std::chrono::milliseconds(50));
  EXPECT_EQ(trial.verdict, duckdb_verdict::damaged);
  EXPECT_EQ(trial.words, "a trial of it comes to no end");
}

TEST_F(duckdb_damage_test, a_trial_has_a_folder_of_its_own_while_it_lasts) {
  const duckdb_trial trial = judged(
      "test \"$1 $2 $3 $4 $5\" = 'setup sql --try x.so --folder' && test -d \"$6\" "
      "&& touch \"$6/file\" && echo \"$6\"");
  EXPECT_EQ(trial.verdict, duckdb_verdict::good);
  EXPECT_EQ(trial.words.find((temporary_ / "ovfile-trial-").string()), 0u) << trial.words;
  EXPECT_FALSE(fs::exists(trial.words));
  ovtest::set_environment("TMPDIR", folder() / "none");
  EXPECT_EQ(judged("test $# = 4 && echo right").words, "right");
}

TEST_F(duckdb_damage_test, a_program_that_cannot_be_started_says_nothing) {
  EXPECT_THROW(command::try_duckdb("x.so", (folder() / "none").string()), command::failure);
}

TEST_F(duckdb_damage_test, a_crash_leaves_no_image) {
  fs::copy_file(ovtest::fake_duckdb(), library());
  ovtest::set_environment("OVFILE_DUCKDB", library());
  ovtest::kept_variables fault({"FAKE_DUCKDB_FAULT"});
  ovtest::set_environment("FAKE_DUCKDB_FAULT", "crash");
  const char* const set = std::getenv("OVFILE_COMMAND");
  ovtest::set_environment("OVFILE", set != nullptr ? set : OVFILE_COMMAND_PATH);
  const ovtest::process_result result = ovtest::run_process(
      {"/bin/sh", "-c", "ulimit -c unlimited; exec \"$OVFILE\" sql 'select 1'"}, folder().path());
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(files(), (names{"libduckdb.so", "t.csv", "t.ovt", "t.parquet"}));
}

}  // namespace
