// Tables that another program changes while DuckDB reads them: at a moment when the reader stands still.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>

#include "command/first_bytes_linux.h"
#include "command/sql_fixture.h"

namespace {

namespace fs = std::filesystem;
using ovtest::names;

constexpr const char* changed = "t.ovt: the table was changed while the statement ran\n";

struct change {
  std::string what;
  std::function<void(const fs::path& table)> make;
};

const std::vector<change> table_changes = {
    {"another table of the same columns and more rows has its name",
     [](const fs::path& table) { fs::rename(fs::path(table).replace_filename("more.ovt"), table); }},
    {"it ends in its middle",
     [](const fs::path& table) { fs::resize_file(table, fs::file_size(table) / 2); }},
    {"its header alone is left", [](const fs::path& table) { fs::resize_file(table, 4096); }},
    {"it is gone", [](const fs::path& table) { fs::remove(table); }}};

class sql_changed_test : public ovtest::sql_test {
 protected:
  void make(const std::string& table, int count) const {
    run_quietly(
        {"sql",
         "select i as I, hash(i) / 1e6 as A, hash(i + 7) / 1e6 as B, i % 3 as Z, 'text ' || hash(i) as T "
         "from range(" +
             std::to_string(count) + ") r(i)",
         "--output", table});
  }

  /// Runs the program up to where it has begun to write, makes the change to t.ovt, and lets it run on.
  /// Returns its exit status.
  int run_with(const change& made, names arguments) const {
    arguments.insert(arguments.begin(), program());
    ovtest::started_program reader(arguments, folder().path(), error_file());
    EXPECT_TRUE(goes_on_to_first_rows(reader, folder().path()));
    made.make(folder() / "t.ovt");
    const int status = reader.wait().status;
    EXPECT_TRUE(WIFEXITED(status));
    return WEXITSTATUS(status);
  }

  /// Each of the changes ends the writing of `target`, of which nothing is left, nor of what else is there.
  void expect_told(const names& arguments, const std::string& target, int rows) const {
    make("t.ovt", rows);
    make("kept.ovt", rows + 1);
    fs::copy_file(folder() / "t.ovt", aside_ / "t.ovt");
    for (const change& made : table_changes) {
      SCOPED_TRACE(made.what);
      restore("t.ovt", aside_ / "t.ovt");
      restore("more.ovt", folder() / "kept.ovt");
      EXPECT_EQ(run_with(made, arguments), 1);
      const std::string words = error();
      EXPECT_EQ(words.find("ovfile: cannot write " + target + ": "), 0u) << words;
      EXPECT_TRUE(words.ends_with(changed)) << words;
      EXPECT_EQ(words.find('\n'), words.size() - 1) << words;
      fs::remove(folder() / "more.ovt");
      fs::remove(folder() / "t.ovt");
      EXPECT_EQ(files(), (names{"kept.ovt"}));
    }
    EXPECT_EQ(csv("select count(*) as N from 'kept.ovt'"), "N\n" + std::to_string(rows + 1) + "\n");
  }

  void restore(const std::string& name, const fs::path& from) const {
    fs::copy_file(from, folder() / name, fs::copy_options::overwrite_existing);
  }

  fs::path error_file() const { return aside_ / "error"; }
  std::string error() const { return ovtest::read_text(error_file()); }
  fs::path aside(const std::string& name) const { return aside_ / name; }

 private:
  ovtest::scratch_folder aside_;
};

constexpr int few_groups = 300'000;      // of rows that a Parquet file is written in
constexpr int more_than_held = 700'000;  // of rows that are held back for a folder

TEST_F(sql_changed_test, while_it_goes_to_parquet) {
  expect_told({"export", "t.ovt", "a.parquet", "--threads", "1"}, "a.parquet", few_groups);
}

TEST_F(sql_changed_test, while_its_rows_are_chosen) {
  expect_told({"export", "t.ovt", "a.parquet", "--where", "Z < 2", "--threads", "1"}, "a.parquet",
              few_groups);
}

TEST_F(sql_changed_test, while_it_goes_to_a_folder) {
  expect_told({"export", "t.ovt", "a", "--partition-by", "Z", "--memory", "200MB", "--threads", "1"}, "a",
              more_than_held);
}

TEST_F(sql_changed_test, while_a_statement_reads_it) {
  expect_told({"sql", "from 't.ovt' union all from 'kept.ovt'", "--output", "a.parquet", "--threads", "1"},
              "a.parquet", few_groups);
}

/// A named pipe is read to its end before the table is.
TEST_F(sql_changed_test, between_the_look_at_a_statement_and_its_work) {
  make_long_table("t.ovt", 1000);
  make_long_table("kept.ovt", 1001);
  fs::copy_file(folder() / "t.ovt", aside("t.ovt"));
  ASSERT_EQ(::mkfifo((folder() / "pipe").c_str(), 0600), 0);
  const std::string statement =
      "select I from read_csv('pipe', columns = {'I': 'double'}, auto_detect = false, header = false) union "
      "all "
      "from 't.ovt'";
  for (const change& made : table_changes) {
    SCOPED_TRACE(made.what);
    restore("t.ovt", aside("t.ovt"));
    restore("more.ovt", folder() / "kept.ovt");
    ovtest::started_program reader({program(), "sql", statement, "--output", "a.ovt", "--threads", "1"},
                                   folder().path(), error_file());
    reader.go_on();
    const int pipe = ::open((folder() / "pipe").c_str(), O_WRONLY);  // returns when it is read
    made.make(folder() / "t.ovt");
    EXPECT_EQ(::write(pipe, "7\n", 2), 2);
    ::close(pipe);
    const int status = reader.wait().status;
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 1) << status;
    EXPECT_NE(error().find("t.ovt: "), std::string::npos) << error();
    fs::remove(folder() / "more.ovt");
    fs::remove(folder() / "t.ovt");
    EXPECT_EQ(files(), (names{"kept.ovt", "pipe"}));
  }
}

}  // namespace
