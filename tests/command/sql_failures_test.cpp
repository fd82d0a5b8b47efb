// What is refused, and in which words.
#include "command/sql_fixture.h"

namespace {

using ovtest::names;
using sql_failures_test = ovtest::sql_test;

TEST_F(sql_failures_test, without_the_library_the_command_tells_where_it_comes_from) {
  ovtest::set_environment("OVFILE_DUCKDB", folder() / "none");
  const auto result = run({"sql", "select 1", "--output", "a.csv"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, "");
  EXPECT_NE(result.error.find("`ovfile setup sql`"), result.error.npos) << result.error;
  EXPECT_EQ(result.error.find('\n'), result.error.size() - 1);
  EXPECT_EQ(files(), names{});
}

TEST_F(sql_failures_test, arguments_that_make_no_sense) {
  expect_wrong_usage({"sql"}, "statement is required (see --help)");
  for (const char* nothing : {" ", ";", "-- a comment", "/* a comment */;"}) {
    expect_wrong_usage({"sql", nothing}, "there is no statement");
  }
  expect_wrong_usage({"sql", "select 1", "-o", "parquet"}, "-o parquet needs --output FILE");
  expect_wrong_usage({"sql", "select 1", "-o", "csv", "--output", "a.ovt"},
                     "a.ovt is a table's name; -o does not go with it");
  expect_wrong_usage({"sql", "select 1", "--threads", "0"},
                     "--threads: 0 is not in the range 1 to 1024 (see --help)");
  expect_wrong_usage({"sql", "select 1", "--threads", "two"},
                     "--threads: two is not a whole number (see --help)");
  for (const char* memory : {"nonsense", "1", "-5GB", "GB", "5XB", "2 G", ""}) {
    expect_wrong_usage(
        {"sql", "select 1", "--memory", memory},
        std::string("--memory: ") + memory + " is no amount of memory like 500MB or 2GB (see --help)");
  }
  EXPECT_EQ(run({"sql", "select 1", "-o", "xml"}).status, 2);
}

TEST_F(sql_failures_test, amounts_of_memory) {
  for (const char* memory : {"500MB", "1.5GB", "2 gb", "1GiB", "900000KB"}) {
    EXPECT_EQ(csv("select 1 as A", {"--memory", memory}), "A\n1\n") << memory;
  }
}

TEST_F(sql_failures_test, bad_sql_is_told_with_its_place) {
  expect_lines({"sql", "selec 1"},
               "ovfile: Parser Error: syntax error at or near \"selec\"\nLINE 1: selec 1\n        ^\n");
  expect_lines({"sql", "select 1; selec 2"},
               "ovfile: Parser Error: syntax error at or near \"selec\"\nLINE 1:  selec 2\n         ^\n");
  make_table("t.ovt", "A\n1\n");
  expect_lines(
      {"sql", "select B from 't.ovt'"},
      "ovfile: Binder Error: Referenced column \"B\" not found in FROM clause! Candidate bindings: \"A\"\n"
      "LINE 1: select B from 't.ovt'\n               ^\n");
}

TEST_F(sql_failures_test, what_goes_wrong_with_a_row_is_told_with_its_place) {
  make_table("t.ovt", "T\nx\n");
  const std::string words =
      "ovfile: Conversion Error: Could not convert string 'x' to INT32 when casting from source column T\n";
  for (const names& output : {names{},
                              {"-o", "json"},
                              {"--output", "a.csv"},
                              {"--output", "a.parquet"},
                              {"--output", "a.ovt"},
                              {"--output", "u.ovt"}}) {
    names arguments = {"sql", "select T::int as I from 't.ovt'"};
    arguments.insert(arguments.end(), output.begin(), output.end());
    expect_lines(arguments, words + "LINE 1: select T::int as I from 't.ovt'\n                ^\n");
    arguments[1] = "select\n  T::int as I\nfrom 't.ovt'";
    expect_lines(arguments, words + "LINE 2:   T::int as I\n           ^\n");
  }
  EXPECT_EQ(files(), names{"t.ovt"});
}

TEST_F(sql_failures_test, the_mark_stays_under_its_place_where_the_line_has_many_digits) {
  std::string lines(8, '\n');
  lines += "select 'x'::int as I";
  expect_lines({"sql", lines},
               "ovfile: Conversion Error: Could not convert string 'x' to INT32\n"
               "LINE 9: select 'x'::int as I\n                  ^\n");
}

TEST_F(sql_failures_test, files_that_are_no_tables) {
  write("x.ovt", "no table");
  write("e.ovt", "");
  std::filesystem::create_directory(folder() / "d.ovt");
  expect_failure({"sql", "from 'none.ovt'"}, "none.ovt: File does not exist");
  expect_failure({"sql", "from 'x.ovt'"}, "x.ovt: Not a valid orvexa table");
  expect_failure({"sql", "from 'e.ovt'"}, "e.ovt: Not a valid orvexa table");
  EXPECT_EQ(run({"sql", "from 'd.ovt'"}).status, 1);
  expect_failure({"sql", "from 'none.csv'"}, "IO Error: No files found that match the pattern \"none.csv\"");
}

TEST_F(sql_failures_test, a_call_that_cannot_be_made) {
  make_table("t.ovt", "A\n1\n");
  const auto says = [&](const std::string& call, const std::string& words) {
    const std::string place = "LINE 1: from " + call + "\n" + std::string(13, ' ') + "^\n";
    expect_lines({"sql", "from " + call}, "ovfile: " + words + "\n" + place);
  };
  says("read_ovt(null)", "the table's name is NULL");
  says("read_ovt('')", "the table's name is empty");
  says("read_ovt('none.ovt')", "none.ovt: File does not exist");
  says("read_ovt('t.ovt', absent := 'zero')", "absent := 'zero': it is one of null, nan, keep");
  says("read_ovt('t.ovt', absent := null)", "absent is NULL");
  says("read_ovt('t.ovt', widen := null)", "widen is NULL");
  says("read_ovt('t.ovt', condition := null)", "condition is NULL");
  says("read_ovt('t.ovt', condition := 'A >')", "condition: a value is missing at position 4");
  says("read_ovt('t.ovt', condition := 'B > 1')", "t.ovt has no column B; its columns are A");
  says("read_ovt('t.ovt', condition := '1 > 0')",
       "condition: the condition names no column, so no row could pass");
  const auto unknown = run({"sql", "from read_ovt('t.ovt', blah := 1)"});
  EXPECT_EQ(unknown.status, 1);
  EXPECT_EQ(
      unknown.error.find("ovfile: Binder Error: Invalid named parameter \"blah\" for function read_ovt"), 0u)
      << unknown.error;
  EXPECT_EQ(run({"sql", "from read_ovt()"}).status, 1);
  EXPECT_EQ(run({"sql", "from read_ovt('t.ovt', 't.ovt')"}).status, 1);
}

TEST_F(sql_failures_test, what_needs_values_that_nobody_gives) {
  expect_failure(
      {"sql", "select ? as A"},
      "Invalid Input Error: Values were not provided for the following prepared statement parameters: 1");
}

TEST_F(sql_failures_test, outputs_that_cannot_be_written) {
  expect_failure({"sql", "select 1 as A", "--output", "."}, "cannot write .: it is not a regular file");
  for (const char* name : {"none/a.csv", "none/a.json", "none/a.ovt", "none/a.parquet"}) {
    const auto result = run({"sql", "select 1 as A", "--output", name});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error.find(std::string("ovfile: cannot create ") + name + ": "), 0u) << result.error;
    EXPECT_EQ(result.error.find('\n'), result.error.size() - 1);
  }
  EXPECT_EQ(files(), names{});
}

TEST_F(sql_failures_test, nothing_is_fetched_from_anywhere) {
  const auto result = run({"sql", "from 'https://localhost:1/a.csv'"});
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.error, "");
  EXPECT_EQ(files(), names{});
}

TEST_F(sql_failures_test, a_table_that_fails_speaks_for_itself_wherever_it_stands) {
  make_table("t.ovt", "A\n1\n");
  for (const char* sql :
       {"create table a as from 'none.ovt'", "describe 'none.ovt'", "explain from 'none.ovt'",
        "select A from 't.ovt' where A in (from 'none.ovt')", "pivot 'none.ovt' on A"}) {
    expect_failure({"sql", sql}, "none.ovt: File does not exist");
  }
  expect_failure({"sql", "from 'none.ovt'", "--output", "a.parquet"}, "none.ovt: File does not exist");
  EXPECT_EQ(files(), names{"t.ovt"});
}

TEST_F(sql_failures_test, a_table_that_fails_while_it_is_read_speaks_for_itself) {
  make_long_table("t.ovt", 400'000);
  std::filesystem::resize_file(folder() / "t.ovt", 1'000'000);
  const std::string words =
      "t.ovt: OvFile Error: cache failed to read an entire page. (180800 bytes read instead of 409600)";
  const names sql = {"sql", "select sum(I) as S from 't.ovt'", "--threads", "1"};
  const auto with = [&sql](names options) {
    options.insert(options.begin(), sql.begin(), sql.end());
    return options;
  };
  expect_failure(sql, words);
  expect_failure(with({"-o", "json"}), words);
  expect_failure(with({"--output", "a.ovt"}), words);
  expect_failure(with({"--output", "a.parquet"}), "cannot write a.parquet: " + words);
  EXPECT_EQ(files(), names{"t.ovt"});
}

}  // namespace
