// The bars of what goes through DuckDB, and what else comes to the same terminal.
#include <signal.h>

#include "command/sql_fixture.h"
#include "support/sanitized.h"
#include "support/started_program_linux.h"

namespace {

using ovtest::names;

/// With so many rows a bar is drawn several times, also one that knows its share only later.
constexpr int many_rows = ovtest::is_sanitized ? 400'000 : 1'000'000;

class sql_bar_test : public ovtest::sql_test {
 protected:
  sql_bar_test() { ovtest::set_environment("OVFILE_PROGRESS", "0"); }
  ~sql_bar_test() override { ovtest::set_environment("OVFILE_PROGRESS", ""); }

  /// What `ovfile` with these arguments, as a shell reads them, writes to a terminal that is all its streams.
  ovtest::shown shown_by(const std::string& arguments, const ovtest::answer& sent = {}) const {
    return ovtest::on_terminal("stty -opost; exec \"$OVFILE\" " + arguments, folder().path(), sent);
  }

  /// Expects success after which these words stand on the terminal, and returns all that was written there.
  std::string expect_left(const std::string& left, const std::string& arguments) const {
    ovtest::shown seen = shown_by(arguments);
    EXPECT_EQ(seen.end.status, 0);
    EXPECT_TRUE(ovtest::left_on_terminal(seen.text) == left)
        << ovtest::left_on_terminal(seen.text).substr(0, 1000);
    return std::move(seen.text);
  }

  /// t.ovt, with which everything lasts longer than a bar needs to be seen.
  void make_slow_table(int rows = 300'000) const {
    run_quietly({"sql",
                 "select i as I, hash(i) / 1e6 as A, hash(i + 7) / 1e6 as B, i % 5 as Z, "
                 "'text ' || hash(i) as T from range(" +
                     std::to_string(rows) + ") r(i)",
                 "--output", "t.ovt"});
  }
};

TEST_F(sql_bar_test, parquet_is_written_and_read_with_a_bar) {
  make_slow_table(many_rows);
  const std::string written = expect_left("", "export t.ovt a.parquet --threads 1");
  EXPECT_NE(written.find("\rwriting ["), written.npos) << written;
  const std::string folders = expect_left("", "export t.ovt a --partition-by Z --threads 1");
  EXPECT_NE(folders.find("\rwriting ["), folders.npos) << folders;
  const std::string back = expect_left("", "import a.parquet b.ovt --threads 1");
  EXPECT_EQ(back.find("\rreading a.parquet "), 0u) << back;
  EXPECT_NE(back.find("\rwriting ["), back.npos) << back;
  EXPECT_EQ(run_quietly({"diff", "t.ovt", "b.ovt"}), "");
}

TEST_F(sql_bar_test, folders_names_are_looked_at_with_a_bar) {
  run_quietly(
      {"sql", "select i as I, 'text ' || hash(i % 3) as T from range(600000) r(i)", "--output", "t.ovt"});
  const std::string folders = expect_left("", "export t.ovt a --partition-by T --threads 1");
  EXPECT_EQ(folders.find("\rlooking "), 0u) << folders;
  EXPECT_NE(folders.find("\rwriting ["), folders.npos) << folders;
}

TEST_F(sql_bar_test, a_table_is_made_with_a_bar) {
  make_slow_table(many_rows);
  const std::string seen = expect_left("", "sql \"from 't.ovt' order by T\" --output u.ovt --threads 1");
  EXPECT_NE(seen.find("\rasking ["), seen.npos) << seen;
  EXPECT_NE(seen.find("\rwriting ["), seen.npos) << seen;
}

/// While nobody takes its rows the statement stands still, and its bar stands there.
TEST_F(sql_bar_test, a_signal_ends_a_statement_and_its_bar) {
  make_slow_table();
  for (const int signal : {SIGINT, SIGTERM}) {
    const ovtest::full_pipe output(folder() / "full");
    const ovtest::shown seen =
        shown_by("sql \"from 't.ovt'\" -o csv --threads 1 >full", {"\rasking [", signal});
    EXPECT_TRUE(seen.end.was_ended_by(signal)) << seen.end.status;
    EXPECT_NE(seen.text.find("\rasking ["), seen.text.npos) << seen.text;
    EXPECT_EQ(ovtest::left_on_terminal(seen.text), "");
    std::filesystem::remove(folder() / "full");
  }
}

TEST_F(sql_bar_test, rows_stand_where_the_bar_was) {
  make_slow_table();
  const std::string statement = "from 't.ovt' where I < 10000 order by T";
  for (const std::string format : {"table", "csv", "json"}) {
    SCOPED_TRACE(format);
    const std::string plain = run_quietly({"sql", statement, "-o", format});
    EXPECT_GT(plain.size(), std::size_t{300'000});
    const std::string seen = expect_left(plain, "sql \"" + statement + "\" -o " + format);
    EXPECT_EQ(seen.find("\rasking "), 0u) << seen.substr(0, 300);
  }
}

TEST_F(sql_bar_test, the_library_draws_none) {
  make_slow_table();
  run_quietly({"export", "t.ovt", "a.parquet"});
  const std::string seen =
      expect_left("N\n300000\n",
                  "sql \"select count(*) as N from 'a.parquet' where hash(T || A) > 0\" -o csv --threads 1");
  EXPECT_EQ(seen.find("\rasking "), 0u) << seen;
}

TEST_F(sql_bar_test, messages_stand_where_the_bar_was) {
  make_slow_table();
  const ovtest::shown failed = shown_by("sql \"select error('no ' || max(T || A)[1]) from 't.ovt'\"");
  EXPECT_NE(failed.end.status, 0);
  EXPECT_EQ(failed.text.find("\rasking "), 0u) << failed.text;
  EXPECT_EQ(ovtest::left_on_terminal(failed.text), "ovfile: Invalid Input Error: no t\n");
  const std::string noted =
      expect_left("ovfile: column 1 \"Au_Lagrange\" becomes Au_Lagra\n",
                  "sql \"select I as Au_Lagrange from 't.ovt' order by T\" --output u.ovt");
  EXPECT_EQ(noted.find("\rasking "), 0u) << noted;
}

TEST_F(sql_bar_test, no_terminal_sees_a_bar) {
  make_slow_table();
  run_quietly({"export", "t.ovt", "a.parquet"});
  run_quietly({"export", "t.ovt", "a", "--partition-by", "Z"});
  run_quietly({"import", "a.parquet", "b.ovt"});
  EXPECT_EQ(csv("select count(*) as N, max(length(T)) > 9 as L from 't.ovt'"), "N,L\n300000,true\n");
}

TEST_F(sql_bar_test, quick_work_shows_no_bar) {
  make_table("t.ovt", "A,B\n1,x\n2,y\n");
  ovtest::set_environment("OVFILE_PROGRESS", "1e9");  // beyond a day: as if it were not set
  for (const char* arguments : {"export t.ovt a.parquet", "export t.ovt a --partition-by B",
                                "import a.parquet u.ovt", "sql \"from 't.ovt'\" --output a.csv"}) {
    const ovtest::shown seen = shown_by(arguments);
    EXPECT_EQ(seen.end.status, 0);
    EXPECT_EQ(seen.text, "") << arguments;
  }
}

}  // namespace
