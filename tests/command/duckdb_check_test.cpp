// What is done before DuckDB's library is loaded, with libraries that do nothing.
#include "command/duckdb/duckdb_check.h"

#include <thread>

#include "command/command_test.h"
#include "command/duckdb/duckdb_library.h"
#include "command/duckdb/good_libraries.h"
#include "command/duckdb_for_tests.h"
#include "command/kept_variables.h"

namespace {

namespace fs = std::filesystem;
using names = std::vector<std::string>;

class duckdb_check_test : public ovtest::command_test {
 protected:
  duckdb_check_test() {
    // What stands in for the library does not give back what it is handed.
    ovtest::set_environment("ASAN_OPTIONS", "detect_leaks=0");
    for (const char* name : {"XDG_DATA_HOME", "LOCALAPPDATA"}) {
      ovtest::set_environment(name, folder() / "data");
    }
    for (const char* name : {"TMPDIR", "TMP", "TEMP"}) ovtest::set_environment(name, temporary_.path());
    for (const char* name : {"FAKE_DUCKDB_VERSION", "FAKE_DUCKDB_FAULT"}) ovtest::set_environment(name, "");
    ovtest::set_environment("FAKE_DUCKDB_LOG", folder() / "log");
    fs::create_directory(folder() / "lib");
    fs::copy_file(ovtest::fake_duckdb(), library());
    ovtest::set_environment("OVFILE_DUCKDB", library());
  }
  ~duckdb_check_test() override {
    EXPECT_TRUE(fs::is_empty(temporary_.path())) << "temporary files are left";
    for (const char* name : {"TMPDIR", "TMP", "TEMP"}) ovtest::set_environment(name, usual_);
  }

  fs::path library() const { return folder() / "lib" / command::duckdb_file_name; }
  static fs::path notes() { return fs::path(command::user_data_folder()) / "good-libraries.txt"; }

  /// Whether the library is tried before the program answers.
  bool is_tried() const {
    fs::remove(folder() / "log");
    EXPECT_EQ(run_quietly({"sql", "select 1"}), "");
    return fs::exists(folder() / "log");
  }

  void expect_refused(const std::string& beginning, const std::string& end) const {
    write("t.csv", "A\n1\n");
    run_quietly({"import", "t.csv", "t.ovt"});
    write("t.parquet", "PAR1");
    for (const names& arguments : {names{"sql", "select 1", "--output", "a.csv"},
                                   {"export", "t.ovt", "a.parquet"},
                                   {"import", "t.parquet", "a.ovt"}}) {
      const ovtest::process_result result = run(arguments);
      EXPECT_EQ(result.status, 1);
      EXPECT_EQ(result.output, "");
      EXPECT_EQ(result.error.find("ovfile: " + beginning), 0u) << result.error;
      EXPECT_EQ(result.error.rfind(end + "\n"), result.error.size() - end.size() - 1) << result.error;
      EXPECT_EQ(result.error.find('\n'), result.error.size() - 1);
    }
    EXPECT_FALSE(fs::exists(notes()));
  }

  ovtest::kept_variables kept_{{"OVFILE_DUCKDB", "FAKE_DUCKDB_VERSION", "FAKE_DUCKDB_FAULT",
                                "FAKE_DUCKDB_LOG", "HOME", "XDG_DATA_HOME", "LOCALAPPDATA", "ASAN_OPTIONS"}};
  fs::path usual_ = fs::temp_directory_path();
  ovtest::scratch_folder temporary_;
};

TEST_F(duckdb_check_test, a_library_is_tried_before_its_first_use_alone) {
  EXPECT_TRUE(is_tried());
  EXPECT_FALSE(is_tried());
  EXPECT_FALSE(is_tried());
}

TEST_F(duckdb_check_test, one_that_changed_is_tried_again) {
  EXPECT_TRUE(is_tried());
  fs::last_write_time(library(), fs::last_write_time(library()) - std::chrono::seconds(3));
  EXPECT_TRUE(is_tried());
  EXPECT_FALSE(is_tried());
}

TEST_F(duckdb_check_test, several_are_noted) {
  fs::create_directory(folder() / "other");
  const fs::path other = folder() / "other" / command::duckdb_file_name;
  fs::copy_file(library(), other);
  EXPECT_TRUE(is_tried());
  ovtest::set_environment("OVFILE_DUCKDB", other);
  EXPECT_TRUE(is_tried());
  EXPECT_FALSE(is_tried());
  ovtest::set_environment("OVFILE_DUCKDB", library());
  EXPECT_FALSE(is_tried());
}

TEST_F(duckdb_check_test, the_last_twenty_are_noted) {
  for (int i = 0; i < 25; ++i) command::note_as_good("file " + std::to_string(i));
  for (int i = 0; i < 25; ++i) EXPECT_EQ(command::is_noted_as_good("file " + std::to_string(i)), i >= 5) << i;
  EXPECT_FALSE(command::is_noted_as_good("file"));
}

TEST_F(duckdb_check_test, notes_that_are_not_what_was_written_count_for_nothing) {
  EXPECT_TRUE(is_tried());
  std::string text = read("data/" + fs::relative(notes(), folder() / "data").generic_string());
  EXPECT_EQ(text.find("libraries that ovfile found good, 1\n"), 0u) << text;
  text.pop_back();  // a line without an end
  for (const std::string& spoiled : {text, std::string(), "x" + text + "\n", std::string(20'000, '\n'),
                                     text.substr(text.find('\n') + 1) + "\n", std::string(300, '\0')}) {
    std::ofstream(notes(), std::ios::binary) << spoiled;
    EXPECT_TRUE(is_tried()) << spoiled.substr(0, 100);
    EXPECT_FALSE(is_tried());
  }
}

TEST_F(duckdb_check_test, where_nothing_can_be_noted_it_is_tried_each_time) {
  fs::create_directories(notes());
  EXPECT_TRUE(is_tried());
  EXPECT_TRUE(is_tried());
  fs::remove_all(folder() / "data");
  write("data", "no folder");
  EXPECT_TRUE(is_tried());
  EXPECT_TRUE(is_tried());
  EXPECT_EQ(read("data"), "no folder");
  for (const char* name : {"HOME", "XDG_DATA_HOME", "LOCALAPPDATA"}) ovtest::set_environment(name, "");
  EXPECT_TRUE(is_tried());
  EXPECT_TRUE(is_tried());
}

TEST_F(duckdb_check_test, several_programs_at_once_note_the_same) {
  std::vector<std::thread> programs;
  for (int i = 0; i < 4; ++i) {
    programs.emplace_back([this] { EXPECT_EQ(run({"sql", "select 1"}).status, 0); });
  }
  for (std::thread& program : programs) program.join();
  EXPECT_FALSE(is_tried());
  EXPECT_EQ(std::distance(fs::directory_iterator(notes().parent_path()), fs::directory_iterator()), 1);
}

TEST_F(duckdb_check_test, one_that_ends_its_process_is_damaged) {
  ovtest::set_environment("FAKE_DUCKDB_FAULT", "crash");
  expect_refused(library().string() + " is damaged (a trial of it ended with ",
                 "); `ovfile setup sql --folder " + library().parent_path().string() +
                     "` fetches DuckDB's library anew");
  const fs::path renamed = folder() / "lib" / "my_duckdb";
  fs::rename(library(), renamed);
  ovtest::set_environment("OVFILE_DUCKDB", renamed);
  expect_refused(renamed.string() + " is damaged (", "); `ovfile setup sql` fetches DuckDB's library anew");
}

TEST_F(duckdb_check_test, the_users_own_is_fetched_anew_without_more_words) {
  ovtest::set_environment("FAKE_DUCKDB_FAULT", "crash");
  const fs::path users = fs::path(command::user_data_folder()) / command::duckdb_file_name;
  fs::create_directories(users.parent_path());
  fs::rename(library(), users);
  ovtest::set_environment("OVFILE_DUCKDB", "");
  expect_refused(users.string() + " is damaged (", "); `ovfile setup sql` fetches DuckDB's library anew");
}

TEST_F(duckdb_check_test, one_that_does_not_work_is_told) {
  ovtest::set_environment("FAKE_DUCKDB_FAULT", "fail");
  expect_refused(library().string() + " does not work: nothing works; `ovfile setup sql --folder ",
                 "` puts DuckDB's library in place");
  ovtest::set_environment("FAKE_DUCKDB_FAULT", "");
  ovtest::set_environment("FAKE_DUCKDB_VERSION", "v1.1.3");
  expect_refused(library().string() + " is DuckDB 1.1.3; this program can use ",
                 "` puts DuckDB's library in place");
  write("lib/text", "This is no library.\n");
  ovtest::set_environment("OVFILE_DUCKDB", folder() / "lib" / "text");
  expect_refused("cannot load " + (folder() / "lib" / "text").string() + ": ",
                 "; `ovfile setup sql` puts DuckDB's library in place");
}

TEST_F(duckdb_check_test, other_commands_need_no_library) {
  ovtest::set_environment("FAKE_DUCKDB_FAULT", "crash");
  write("t.csv", "A\n1\n");
  run_quietly({"import", "t.csv", "t.ovt"});
  EXPECT_EQ(run_quietly({"export", "t.ovt"}), "A\n1\n");
  EXPECT_FALSE(fs::exists(folder() / "log"));
}

}  // namespace
