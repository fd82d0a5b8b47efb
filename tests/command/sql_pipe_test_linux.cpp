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

}  // namespace
