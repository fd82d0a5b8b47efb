// Statements that are no plain select, and several of them.
#include "command/sql_fixture.h"

namespace {

using ovtest::names;
using sql_statement_kinds_test = ovtest::sql_test;

TEST_F(sql_statement_kinds_test, the_last_ones_rows_are_written) {
  EXPECT_EQ(
      csv("create table t(A int); insert into t values (1), (2);\nselect sum(A) as S from t; -- done\n"),
      "S\n3\n");
  EXPECT_EQ(csv("select 'a;b' as X -- it's; a comment"), "X\na;b\n");
}

TEST_F(sql_statement_kinds_test, what_gives_rows_in_another_way) {
  EXPECT_EQ(csv("values (1, 'a'), (2, 'b')"), "col0,col1\n1,a\n2,b\n");
  EXPECT_EQ(csv("with w as (select 1 as A) from w"), "A\n1\n");
  EXPECT_EQ(csv("create table t(A int, B text); show tables"), "name\nt\n");
  EXPECT_EQ(csv("create table t(A int); pragma table_info('t')"),
            "cid,name,type,notnull,dflt_value,pk\n0,A,INTEGER,false,,false\n");
  EXPECT_EQ(csv("call range(2)"), "range\n0\n1\n");
}

TEST_F(sql_statement_kinds_test, tables_are_described_and_summarized) {
  make_table("t.ovt", "BHID,AU\nDH1,1.5\nDH2,2.5\n");
  EXPECT_EQ(csv("describe 't.ovt'"),
            "column_name,column_type,null,key,default,extra\nBHID,VARCHAR,YES,,,\nAU,DOUBLE,YES,,,\n");
  EXPECT_EQ(csv("select column_name, min, max, count from (summarize 't.ovt')"),
            "column_name,min,max,count\nBHID,DH1,DH2,2\nAU,1.5,2.5,2\n");
}

TEST_F(sql_statement_kinds_test, a_pivot_finds_its_columns_first) {
  make_table("t.ovt", "BHID,LITH,AU\nA,OX,1\nA,SU,2\nB,OX,3\n");
  const std::string pivot = "pivot 't.ovt' on LITH using sum(AU) group by BHID order by BHID";
  EXPECT_EQ(csv(pivot), "BHID,OX,SU\nA,1,2\nB,3,\n");
  run_quietly({"sql", pivot, "--output", "u.ovt"});
  EXPECT_EQ(run_quietly({"export", "u.ovt"}), "BHID,OX,SU\nA,1,2\nB,3,\n");
  EXPECT_EQ(csv("create table p as " + pivot + "; select count(*) as N from p"), "N\n2\n");
  expect_lines({"sql", "pivot 't.ovt' on LITH using sum(CU)"},
               "ovfile: Binder Error: Referenced column \"CU\" not found in FROM clause! Candidate bindings: "
               "\"AU\"\n");
}

TEST_F(sql_statement_kinds_test, a_plan_is_shown_line_by_line) {
  const std::string shown = run_quietly({"sql", "explain select 1 as A"});
  EXPECT_EQ(shown.find("explain_key    explain_value\nphysical_plan  \xE2\x94\x8C"), 0u) << shown;
  EXPECT_NE(shown.find("\n               \xE2\x94\x82"), shown.npos) << shown;
  EXPECT_EQ(shown.substr(shown.size() - 4), "\xE2\x94\x98\n");
}

TEST_F(sql_statement_kinds_test, what_only_does_something_tells_how_many_rows_or_nothing) {
  for (const char* sql : {"set threads = 1", "begin", "create table t(A int)", "attach ':memory:' as other",
                          "create view v as select 1", "checkpoint"}) {
    EXPECT_EQ(run_quietly({"sql", sql}), "") << sql;
  }
  EXPECT_EQ(run_quietly({"sql", "create table t(A int); insert into t from range(3)"}), "Count\n    3\n");
  EXPECT_EQ(run_quietly({"sql", "create table t as from range(3)"}), "Count\n    3\n");
  EXPECT_EQ(run_quietly({"sql", "copy (select 1 as A) to 'a.csv'"}), "Count\n    1\n");
  EXPECT_EQ(read("a.csv"), "A\n1\n");
}

TEST_F(sql_statement_kinds_test, rows_that_a_change_returns) {
  EXPECT_EQ(csv("create table t(A int); insert into t values (3), (4) returning A, A > 3 as B, 'x' as C"),
            "A,B,C\n3,false,x\n4,true,x\n");
}

TEST_F(sql_statement_kinds_test, what_cannot_be_shown_is_not_done) {
  run_quietly({"sql", "attach 'kept.db' as k; create table k.t(A int)"});
  expect_failure({"sql", "attach 'kept.db' as k; insert into k.t values (1) returning [A] as L"},
                 "the column L of this statement cannot be shown; as text it can: L::varchar");
  EXPECT_EQ(csv("attach 'kept.db' as k; select count(*) as N from k.t"), "N\n0\n");
  EXPECT_EQ(csv("attach 'kept.db' as k; insert into k.t values (1) returning [A]::varchar as L"), "L\n[1]\n");
}

TEST_F(sql_statement_kinds_test, only_rows_make_a_file) {
  expect_failure({"sql", "set threads = 1", "--output", "a.ovt"},
                 "this statement gives no rows to make a table of");
  expect_failure({"sql", "set threads = 1", "--output", "a.parquet"},
                 "this statement gives no rows to write");
  EXPECT_EQ(files(), names{});
}

TEST_F(sql_statement_kinds_test, a_failure_ends_the_work) {
  const auto result =
      run({"sql", "create table t(A int); insert into nowhere values (1); copy t to 'a.csv'"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.error.find("ovfile: Catalog Error: Table with name nowhere does not exist!"), 0u);
  EXPECT_EQ(files(), names{});
}

TEST_F(sql_statement_kinds_test, a_table_is_not_copied_over) {
  make_table("s.ovt", "A\n1\n");
  const std::string before = read("s.ovt");
  const std::string words = "COPY makes no table of s.ovt: give the query alone and --output s.ovt";
  for (const char* sql :
       {"copy (select 1 as A) to 's.ovt'", "create table t(A int); copy t to 's.ovt' (format csv)",
        "COPY (select 1 as A) TO s.ovt", "copy (select 1 as A) to ((s.ovt))",
        "copy (select 1 as A) to ('s' || '.ovt')",
        "set variable f = 's.ovt'; copy (select 1 as A) to (getvariable('f'))",
        "explain analyze copy (select 1 as A) to 's.ovt'", "copy\xC2\xA0(select 1 as A) to\xC2\xA0's.ovt'",
        "copy (select 1 as A) to 's.ovt' (format parquet); select 1",
        "prepare p as copy (select 1 as A) to e's\\x2Eovt'; execute p"}) {
    expect_failure({"sql", sql}, words);
    expect_failure({"sql", sql, "--output", "s.ovt"}, words);
  }
  expect_failure({"sql", "copy (select 1 as A) to 'S.OVT'"},
                 "COPY makes no table of S.OVT: give the query alone and --output S.OVT");
  EXPECT_EQ(read("s.ovt"), before);
  EXPECT_EQ(files(), names{"s.ovt"});
}

TEST_F(sql_statement_kinds_test, a_table_is_copied_elsewhere) {
  make_table("s.ovt", "A\n1\n");
  EXPECT_EQ(run_quietly({"sql", "copy 's.ovt' to 'a.csv'"}), "Count\n    1\n");
  EXPECT_EQ(run_quietly({"sql", "copy (from 's.ovt') to ('b' || '.csv')"}), "Count\n    1\n");
  EXPECT_EQ(read("a.csv"), "A\n1.0\n");
  EXPECT_EQ(read("b.csv"), "A\n1.0\n");
}

}  // namespace
