// Statements that read from a pipe, which gives its bytes but once.
#include "command/sql_fixture.h"

namespace {

using sql_pipe_test = ovtest::sql_test;

TEST_F(sql_pipe_test, standard_input_is_read) {
  const ovtest::process_result end = shell(
      "printf 'A,B\\n1,x\\n2,y\\n' | \"$OVFILE\" sql \"select sum(A) as N, max(B) as B from "
      "read_csv('/dev/stdin')\" -o csv");
  EXPECT_EQ(end.status, 0);
  EXPECT_EQ(end.error, "");
  EXPECT_EQ(end.output, "N,B\n3,y\n");
}

TEST_F(sql_pipe_test, a_named_pipe_is_read) {
  const ovtest::process_result end = shell(
      "mkfifo p.csv && { printf 'A,B\\n1,x\\n2,y\\n' >p.csv & } && "
      "timeout 60 \"$OVFILE\" sql \"from 'p.csv' order by A desc\" -o csv; wait");
  EXPECT_EQ(end.error, "");
  EXPECT_EQ(end.output, "A,B\n2,y\n1,x\n");
}

TEST_F(sql_pipe_test, a_table_is_made_of_it) {
  const ovtest::process_result end =
      shell("printf 'A,B\\n1,x\\n2,y\\n' | \"$OVFILE\" sql \"from read_csv('/dev/stdin')\" --output u.ovt");
  EXPECT_EQ(end.status, 0);
  EXPECT_EQ(end.error, "");
  EXPECT_EQ(run_quietly({"export", "u.ovt"}), "A,B\n1,x\n2,y\n");
}

TEST_F(sql_pipe_test, a_table_of_standard_input_is_made_first) {
  const ovtest::process_result end = shell(
      "printf 'A,B\\n1,x\\n2,y\\n' | \"$OVFILE\" sql \"create table t as from read_csv('/dev/stdin'); "
      "select count(*) as N from t\" -o csv");
  EXPECT_EQ(end.error, "");
  EXPECT_EQ(end.output, "N\n2\n");
}

/// Whatever the statement is, and however often it looks at its input.
TEST_F(sql_pipe_test, any_statement_reads_standard_input) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"copy (select * from read_csv('/dev/stdin')) to 'c.csv'; from 'c.csv'", "A,B\n1,x\n2,y\n"},
      {"create view v as from read_csv('/dev/stdin'); from v", "A,B\n1,x\n2,y\n"},
      {"prepare s as from read_csv('/dev/stdin'); execute s", "A,B\n1,x\n2,y\n"},
      {"select column_name as N from (describe from read_csv('/dev/stdin'))", "N\nA\nB\n"},
      {"select column_name as N, count as C from (summarize from read_csv('/dev/stdin'))", "N,C\nA,2\nB,2\n"},
      {"select a.B from read_csv('/dev/stdin') a join read_csv('/dev/fd/0') b on a.A = b.A + 1", "B\ny\n"}};
  for (const auto& [statement, output] : cases) {
    SCOPED_TRACE(statement);
    const auto result = shell("printf 'A,B\\n1,x\\n2,y\\n' | \"$OVFILE\" sql \"" + statement + "\" -o csv");
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(result.output, output);
  }
  EXPECT_EQ(files(), (std::vector<std::string>{"c.csv"}));
}

TEST_F(sql_pipe_test, a_named_pipe_is_for_queries) {
  const auto result = shell(
      "mkfifo p.csv && { printf 'A,B\\n1,x\\n' >p.csv & } && "
      "timeout 20 \"$OVFILE\" sql \"copy (from read_csv('p.csv')) to 'c.csv'\"; echo $?; cat p.csv >gone");
  EXPECT_EQ(result.error,
            "ovfile: p.csv: only a query can read a named pipe; give its bytes by standard input, as "
            "/dev/stdin\n");
  EXPECT_EQ(result.output, "1\n");
}

TEST_F(sql_pipe_test, a_view_of_a_named_pipe_is_refused) {
  const auto result = shell(
      "mkfifo p.csv; timeout 20 \"$OVFILE\" sql \"create or replace temp view v as from read_csv('p.csv'); "
      "from v\"; "
      "echo $?");
  EXPECT_EQ(result.output, "1\n");
  EXPECT_NE(result.error.find("p.csv: only a query can read a named pipe"), std::string::npos)
      << result.error;
}

TEST_F(sql_pipe_test, a_named_pipe_is_read_but_once) {
  ASSERT_EQ(shell("mkfifo p.csv").status, 0);
  for (const std::string statement :
       {"select count(*) from 'p.csv' a, 'p.csv' b",
        "select (select count(*) from read_csv('p.csv')), (select count(*) from read_csv('./p.csv'))",
        "from read_csv(['p.csv', 'p.csv'])", "create table a as from 'p.csv'; from 'p.csv'"}) {
    SCOPED_TRACE(statement);
    const auto result = shell("timeout 20 \"$OVFILE\" sql \"" + statement + "\"; echo $?");
    EXPECT_EQ(result.output, "1\n");
    EXPECT_NE(
        result.error.find("p.csv: a named pipe can be read but once; give its bytes by standard input, as "
                          "/dev/stdin\n"),
        std::string::npos)
        << result.error;
  }
}

TEST_F(sql_pipe_test, a_query_that_needs_no_more_waits_for_no_end) {
  const auto result = shell(
      "{ printf 'A\\n1\\n2\\n'; yes 3; } | timeout 30 \"$OVFILE\" sql \"select count(*) as N from (from "
      "read_csv('/dev/stdin') limit 2)\" -o csv; echo $?");
  EXPECT_EQ(result.error, "");
  EXPECT_EQ(result.output, "N\n2\n0\n");
}

TEST_F(sql_pipe_test, a_name_between_dollars_is_a_name) {
  const auto result = shell(
      "printf 'A\\n1\\n' | \"$OVFILE\" sql 'create view v as from read_csv($$/dev/stdin$$); from v' -o csv");
  EXPECT_EQ(result.error, "");
  EXPECT_EQ(result.output, "A\n1\n");
}

TEST_F(sql_pipe_test, rows_go_to_standard_output) {
  const auto result = shell("\"$OVFILE\" sql \"copy (select 1 as A) to '/dev/stdout'\" | cat");
  EXPECT_EQ(result.error, "");
  EXPECT_NE(result.output.find("A\n1\n"), std::string::npos) << result.output;
}

TEST_F(sql_pipe_test, texts_of_piped_csv_are_told_of_too) {
  const auto result = shell(
      "printf 'A\\n4\\n' | \"$OVFILE\" sql \"select "
      "A::varchar as A, '007' as ID from read_csv('/dev/stdin')\" --output u.ovt");
  EXPECT_NE(result.error.find("the column A is text"), std::string::npos) << result.error;
  EXPECT_EQ(result.error.find("ID"), std::string::npos) << result.error;
}

}  // namespace
