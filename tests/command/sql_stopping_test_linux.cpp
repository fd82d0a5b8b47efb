// What happens to a question when the world outside ends it: signals, full disks, readers that leave, tables
// that are cut while they are read.
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "command/sql_fixture.h"
#include "ovfile/smart.h"
#include "support/started_program_linux.h"

namespace {

using ovtest::names;

class sql_stopping_test : public ovtest::sql_test {
 protected:
  /// Starts a question that would take hours, and sends the signal some time after the database is there.
  ovtest::ended_program stop(names arguments, int signal, int milliseconds) const {
    arguments.insert(arguments.begin(), {program(), "sql"});
    ovtest::started_program started(arguments, folder().path());
    (void)started.goes_on_to(ovtest::folder_change::creation, temporary().path());
    started.go_on();
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    return started.wait_after(signal);
  }

  void expect_nothing_left(const names& expected) const {
    EXPECT_EQ(files(), expected);
    EXPECT_TRUE(std::filesystem::is_empty(temporary().path()));
  }
};

constexpr const char* endless_numbers = "select i as A, 'text' as T from range(100000000000) r(i)";

TEST_F(sql_stopping_test, a_signal_leaves_nothing) {
  make_long_table("t.ovt", 70'000);
  const std::string endless_join =
      "select count(*) as N from 't.ovt' a, 't.ovt' b, 't.ovt' c, 't.ovt' d where a.I + b.I * c.I <> d.I";
  const std::vector<names> works = {
      {endless_join},
      {endless_join, "--output", "a.csv"},
      {endless_join, "--output", "a.ovt"},
      {endless_numbers, "--output", "a.csv"},
      {endless_numbers, "--output", "a.json"},
      {endless_numbers, "--output", "a.parquet"},
      {endless_numbers, "--output", "a.ovt", "--memory", "200MB"},
      {std::string(endless_numbers) + " order by hash(i)", "--memory", "200MB"}};
  for (const names& work : works) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
      SCOPED_TRACE(work.front() + (work.size() > 2 ? " " + work[2] : "") + ", signal " +
                   std::to_string(signal));
      const ovtest::ended_program end = stop(work, signal, 100);
      EXPECT_TRUE(end.was_ended_by(signal)) << end.status;
      expect_nothing_left({"t.ovt"});
    }
  }
}

TEST_F(sql_stopping_test, a_signal_stops_at_any_moment) {
  make_long_table("t.ovt", 70'000);
  for (const int milliseconds : {0, 1, 2, 5, 10, 20, 40}) {
    SCOPED_TRACE(milliseconds);
    const ovtest::ended_program end = stop({endless_numbers, "--output", "a.csv"}, SIGTERM, milliseconds);
    EXPECT_TRUE(end.was_ended_by(SIGTERM)) << end.status;
    expect_nothing_left({"t.ovt"});
  }
}

TEST_F(sql_stopping_test, a_signal_leaves_the_old_table_or_the_new_one) {
  make_long_table("old.ovt", 30'000);
  const std::string before = read("old.ovt");
  run_quietly({"sql", "select I + 1 as I from 'old.ovt'", "--output", "new.ovt"});
  const std::string after = read("new.ovt");
  EXPECT_TRUE(before != after);
  for (const int milliseconds : {0, 5, 10, 20, 30, 40, 60, 90}) {
    SCOPED_TRACE(milliseconds);
    write("t.ovt", before);
    stop({"select I + 1 as I from 't.ovt'", "--output", "t.ovt"}, SIGTERM, milliseconds);
    const std::string left = read("t.ovt");
    EXPECT_TRUE(left == before || left == after);
    expect_nothing_left({"new.ovt", "old.ovt", "t.ovt"});
  }
}

TEST_F(sql_stopping_test, a_file_that_may_not_grow_leaves_none) {
  const std::string rows = "select i as A, hash(i)::varchar as T from range(500000) r(i)";
  write("kept.csv", "kept");
  for (const char* name : {"a.csv", "a.json", "a.ovt", "a.parquet", "kept.csv"}) {
    SCOPED_TRACE(name);
    const auto result = shell("ulimit -f 2000; exec \"$OVFILE\" sql \"" + rows + "\" --output " + name);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_NE(result.error.find("File too large"), result.error.npos) << result.error;
    EXPECT_EQ(result.error.find('\n'), result.error.size() - 1) << result.error;
    expect_nothing_left({"kept.csv"});
  }
  EXPECT_EQ(read("kept.csv"), "kept");
}

TEST_F(sql_stopping_test, an_output_that_is_full_is_a_failure) {
  if (::access("/dev/full", W_OK) != 0) GTEST_SKIP() << "/dev/full is not there";
  for (const char* format : {"table", "csv", "json"}) {
    const auto result =
        shell(std::string("exec \"$OVFILE\" sql \"select 1 as A\" -o ") + format + " >/dev/full");
    EXPECT_EQ(result.status, 1) << format;
    EXPECT_EQ(result.error, "ovfile: cannot write standard output: No space left on device\n") << format;
  }
}

TEST_F(sql_stopping_test, a_reader_that_leaves_is_no_failure) {
  const auto result = shell(std::string("{ \"$OVFILE\" sql \"") + endless_numbers +
                            "\" -o csv; echo $? >status; } | head -n 2");
  EXPECT_EQ(result.output, "A,T\n0,text\n");
  EXPECT_EQ(result.error, "");
  EXPECT_EQ(read("status"), "0\n");
}

TEST_F(sql_stopping_test, what_does_not_fit_into_memory_goes_to_the_disk_and_goes_from_there) {
  const std::string sql =
      "select i as A, repeat(hash(i)::varchar, 4) as T from range(1000000) r(i) order by hash(i * 3)";
  run_quietly({"sql",
               "create table t as " + sql + "; select count(*) as N, sum(A) as S from (from t order by T)",
               "--memory", "50MB", "--threads", "1", "--output", "n.csv"});
  EXPECT_EQ(read("n.csv"), "N,S\n1000000,499999500000\n");
  expect_nothing_left({"n.csv"});
}

TEST_F(sql_stopping_test, no_room_for_what_does_not_fit_into_memory) {
  const auto result = shell(
      "ulimit -f 2000; exec \"$OVFILE\" sql \"select A from (select i as A, repeat(hash(i)::varchar, 4) as T "
      "from range(1000000) r(i) order by T, A)\" --memory 50MB --threads 1 --output a.csv");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.error.find("ovfile: "), 0u);
  EXPECT_EQ(result.error.find('\n'), result.error.size() - 1) << result.error;
  expect_nothing_left({});
}

TEST_F(sql_stopping_test, a_table_that_is_cut_while_it_is_read_is_a_failure) {
  make_long_table("t.ovt", 500'000);
  const auto result = shell(
      "{ \"$OVFILE\" sql \"select I, I + 0.5 as J, 'some text' as T from 't.ovt'\" -o csv; echo $? >status; "
      "} | "
      "{ head -n 2; truncate -s 100000 t.ovt; cat >/dev/null; }");
  EXPECT_EQ(result.output, "I,J,T\n1,1.5,some text\n");
  EXPECT_EQ(read("status"), "1\n");
  EXPECT_NE(result.error.find("t.ovt"), result.error.npos) << result.error;
  EXPECT_EQ(result.error.find('\n'), result.error.size() - 1) << result.error;
}

TEST_F(sql_stopping_test, a_table_that_becomes_another_while_the_statement_runs_is_a_failure) {
  make_long_table("t.ovt", 500'000);
  const std::vector<std::pair<std::string, std::string>> changes = {
      {"mv fewer.ovt u.ovt", "u.ovt: the table was changed while the statement ran"},
      {"mv columns.ovt u.ovt", "u.ovt: the table was changed while the statement ran"},
      {"mv kinds.ovt u.ovt", "u.ovt: the table was changed while the statement ran"},
      {"mv single.ovt u.ovt", "u.ovt: the table was changed while the statement ran"},
      {"rm u.ovt", "u.ovt: File does not exist"},
      {"echo text >u.ovt", "u.ovt: Not a valid orvexa table"}};
  make_long_table("fewer.ovt", 9);
  make_table("columns.ovt", "I,J\n1,1\n2,2\n3,3\n4,4\n5,5\n6,6\n7,7\n8,8\n9,9\n10,10\n");
  make_table("kinds.ovt", "I\nx\n\"\"\ny\nz\na\nb\nc\nd\ne\nf\n");
  make_table("single.ovt", "I\n1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n", {"--single"});
  for (const auto& [change, words] : changes) {
    SCOPED_TRACE(change);
    std::filesystem::remove(folder() / "u.ovt");
    make_long_table("u.ovt", 10);
    const auto result = shell(
        "{ \"$OVFILE\" sql \"from 't.ovt' union all from 'u.ovt'\" -o csv --threads 1; echo $? >status; } | "
        "{ head -n 1; " +
        change + "; cat >/dev/null; }");
    EXPECT_EQ(result.output, "I\n");
    EXPECT_EQ(read("status"), "1\n");
    EXPECT_NE(result.error.find(words), result.error.npos) << result.error;
    EXPECT_EQ(result.error.find('\n'), result.error.size() - 1) << result.error;
  }
}

TEST_F(sql_stopping_test, a_table_that_is_read_is_not_replaced_by_others) {
  make_long_table("t.ovt", 500'000);
  const auto result = shell(
      "{ \"$OVFILE\" sql \"select I, I + 0.5 as J, 'some text' as T from 't.ovt'\" -o csv; echo $? >status; "
      "} | "
      "{ head -n 1; \"$OVFILE\" sort t.ovt --by I --descending 2>refused; tail -n 1; }");
  EXPECT_EQ(result.output, "I,J,T\n500000,500000.5,some text\n");
  EXPECT_EQ(result.error, "");
  EXPECT_EQ(read("status"), "0\n");
  EXPECT_NE(read("refused"), "");
}

TEST_F(sql_stopping_test, a_table_that_another_program_has_open_is_not_replaced) {
  make_long_table("t.ovt", 10);
  const std::string before = read("t.ovt");
  const auto reader = ovfile::create_table();
  const ovfile::text name{std::string_view((folder() / "t.ovt").string())};
  ASSERT_EQ(reader->Open(name.get(), 1), S_OK);
  expect_failure({"sql", "select 1 as A", "--output", "t.ovt"},
                 "cannot replace t.ovt: it is open in another program");
  EXPECT_EQ(csv("select count(*) as N from 't.ovt'"), "N\n10\n");
  EXPECT_EQ(reader->Close(), S_OK);
  EXPECT_TRUE(read("t.ovt") == before);
}

}  // namespace
