// Tables that are made of what a question gives.
#include <nlohmann/json.hpp>

#include "command/sql_fixture.h"

namespace {

using ovtest::names;

class sql_table_test : public ovtest::sql_test {
 protected:
  /// Makes u.ovt without a word and returns its CSV.
  std::string made(const std::string& statement, names options = {}) const {
    options.insert(options.begin(), {"sql", statement, "--output", "u.ovt"});
    EXPECT_EQ(run_quietly(std::move(options)), "");
    return run_quietly({"export", "u.ovt"});
  }

  /// "name:type:width" of each of u.ovt's fields.
  names fields() const {
    names found;
    const nlohmann::json info = nlohmann::json::parse(run_quietly({"info", "u.ovt", "--json"}));
    for (const auto& field : info["fields"]) {
      found.push_back(field["name"].get<std::string>() + ":" + field["type"].get<std::string>() + ":" +
                      std::to_string(field["width"].get<int>()));
    }
    return found;
  }

  void expect_nothing_made(const std::string& statement, const std::string& line, names options = {}) const {
    options.insert(options.begin(), {"sql", statement, "--output", "u.ovt"});
    const names before = files();
    expect_failure(options, line);
    EXPECT_EQ(files(), before);
  }
};

TEST_F(sql_table_test, numbers_and_texts) {
  EXPECT_EQ(made("select * from (values (1, 'x', 0.5::double), (null, null, null), (3, 'long text', -1e300)) "
                 "as t(A, B, C)"),
            "A,B,C\n1,x,0.5\n,,\n3,long text,-1e+300\n");
  EXPECT_EQ(fields(), (names{"A:number:4", "B:text:12", "C:number:4"}));
}

TEST_F(sql_table_test, every_type_has_its_column) {
  EXPECT_EQ(
      made("select true as BO, false as BF, 1::tinyint as TI, 2::smallint as SM, 3::utinyint as UT, "
           "4::uinteger as UI, "
           "1.5::real as RE, 12.340::decimal(10, 3) as DE, date '2024-02-29' as DA, "
           "timestamp '2024-02-29 12:34:56' as TS, time '01:02:03' as TM, interval 3 day as IV, "
           "'\\x00a'::blob as BL, [1, null] as LI, {'x': 1} as ST, null as NU, 'b'::enum('a', 'b') as EN"),
      "BO,BF,TI,SM,UT,UI,RE,DE,DA,TS,TM,IV,BL,LI,ST,NU,EN\n"
      "1,0,1,2,3,4,1.5,12.34,2024-02-29,2024-02-29 12:34:56,01:02:03,3 days,\\x00a,\"[1, NULL]\",{'x': "
      "1},,b\n");
  EXPECT_EQ(fields(),
            (names{"BO:number:4", "BF:number:4", "TI:number:4", "SM:number:4", "UT:number:4", "UI:number:4",
                   "RE:number:4", "DE:number:4", "DA:text:12", "TS:text:20", "TM:text:8", "IV:text:8",
                   "BL:text:8", "LI:text:12", "ST:text:8", "NU:number:4", "EN:text:4"}));
}

TEST_F(sql_table_test, whole_numbers_that_no_double_holds_keep_their_digits) {
  EXPECT_EQ(made("select * from (values (9007199254740992, 9007199254740993, 9223372036854775807, "
                 "18446744073709551615::ubigint, 170141183460469231731687303715884105727::hugeint, "
                 "4611686018427387904), (1, 1, 1, 1, 1, 1), (null, null, null, null, null, null)) as t(A, B, "
                 "C, D, E, F)"),
            "A,B,C,D,E,F\n"
            "9007199254740992,9007199254740993,9223372036854775807,18446744073709551615,"
            "170141183460469231731687303715884105727,4.611686018427388e+18\n"
            "1,1,1,1,1,1\n,,,,,\n");
  EXPECT_EQ(fields(),
            (names{"A:number:4", "B:text:16", "C:text:20", "D:text:20", "E:text:40", "F:number:4"}));
}

TEST_F(sql_table_test, decimals_are_numbers_where_the_digits_stay) {
  EXPECT_EQ(made("select 123456789.1230::decimal(18, 4) as A, 0.00000015::decimal(18, 10) as B, "
                 "12345678901234.5678::decimal(18, 4) as C, "
                 "12345678901234567890123456789012345678::decimal(38, 0) as D, "
                 "null::decimal(10, 2) as E"),
            "A,B,C,D,E\n123456789.123,1.5e-07,12345678901234.5678,12345678901234567890123456789012345678,\n");
  EXPECT_EQ(fields(), (names{"A:number:4", "B:number:4", "C:text:20", "D:text:40", "E:number:4"}));
}

TEST_F(sql_table_test, null_is_absent_and_nan_where_it_is_asked_for) {
  const std::string sql =
      "select 'nan'::double as A, 'nan'::real as B, null::double as C, 'inf'::double as D";
  EXPECT_EQ(made(sql), "A,B,C,D\nnan,nan,,inf\n");
  EXPECT_EQ(made(sql, {"--absent", "nan"}), "A,B,C,D\n,,,inf\n");
}

TEST_F(sql_table_test, absent_values_come_back_as_absent) {
  for (const names& precision : {names{}, names{"--single"}}) {
    make_table("t.ovt", "A,T\n1,x\n,\n3,z\n", precision);
    for (const char* absent : {"null", "nan", "keep"}) {
      SCOPED_TRACE(absent);
      EXPECT_EQ(made("from 't.ovt'", {"--absent", absent}), "A,T\n1,x\n,\n3,z\n");
      EXPECT_EQ(made("from read_ovt('t.ovt', widen := false)", {"--absent", absent}), "A,T\n1,x\n,\n3,z\n");
    }
  }
}

TEST_F(sql_table_test, single_precision_on_request) {
  EXPECT_EQ(made("select 0.1::double as A, 16777216 as B, 1e-30::double as C, 'x' as D", {"--single"}),
            "A,B,C,D\n0.1,16777216,1e-30,x\n");
  EXPECT_EQ(fields(), (names{"A:number:4", "B:number:4", "C:number:4", "D:text:4"}));
  expect_nothing_made("select 1 as A, 1e300::double as B",
                      "cannot write u.ovt: Append failed, column B, row 1: "
                      "the number is beyond what the column can hold",
                      {"--single"});
}

TEST_F(sql_table_test, digits_that_single_precision_loses_are_told) {
  const auto result = run({"sql", "select 16777217::integer as A, 1e-60::double as B, 1 as C from range(2)",
                           "--single", "--output", "u.ovt"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.error, "ovfile: warning: single precision loses digits of A, B\n");
  EXPECT_EQ(run_quietly({"export", "u.ovt"}), "A,B,C\n16777216,0,1\n16777216,0,1\n");
  EXPECT_EQ(made("select 16777217::integer as A where false", {"--single"}), "A\n");
}

TEST_F(sql_table_test, floats_are_the_numbers_that_their_digits_say) {
  const std::string floats =
      "select unnest([1e-10, 123.45678, 1.2345678e-05, 0.1, 0.1, 16777216, null, -1e30, 'nan', 'inf', -0e0, "
      "0, 1e-45]::float[]) as A, 7 as B";
  const std::string expected =
      "A,B\n1e-10,7\n123.45678,7\n1.2345678e-05,7\n0.1,7\n0.1,7\n16777216,7\n,7\n,7\nnan,7\ninf,7\n-0,7\n"
      "0,7\n1e-45,7\n";
  EXPECT_EQ(made(floats), expected);
  EXPECT_EQ(made(floats, {"--single"}), expected);
}

TEST_F(sql_table_test, no_rows_make_an_empty_table) {
  EXPECT_EQ(made("select 1 as A where false"), "A\n");
  EXPECT_EQ(made("select 1 as A, 'x' as B, 5000000000 as C where false"), "A,B,C\n");
  EXPECT_EQ(fields(), (names{"A:number:4", "B:text:4", "C:number:4"}));
}

TEST_F(sql_table_test, names_that_a_table_refuses_are_changed_and_told) {
  const auto result = run({"sql", "select 1 as A, 2 as a, 3 as A, 4 as \"a b\", 5 as AVERYLONGNAME, avg(6) ",
                           "--output", "u.ovt"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.error,
            "ovfile: column 3 \"A\", a repeated name, becomes A_2\n"
            "ovfile: column 4 \"a b\" becomes a_b\n"
            "ovfile: column 5 \"AVERYLONGNAME\" becomes AVERYLON\n"
            "ovfile: column 6 \"avg(6)\" becomes avg_6_\n");
  EXPECT_EQ(run_quietly({"export", "u.ovt"}), "A,a,A_2,a_b,AVERYLON,avg_6_\n1,2,3,4,5,6\n");
}

TEST_F(sql_table_test, a_description) {
  made("select 1 as A", {"--description", "my table"});
  EXPECT_EQ(nlohmann::json::parse(run_quietly({"info", "u.ovt", "--json"}))["description"], "my table");
  EXPECT_EQ(run({"sql", "select 1 as A", "--description", std::string(65, 'x'), "--output", "v.ovt"}).status,
            1);
  EXPECT_EQ(files(), names{"u.ovt"});
}

TEST_F(sql_table_test, what_a_table_has_no_room_for) {
  EXPECT_EQ(made("select repeat('x', 1024) as A"), "A\n" + std::string(1024, 'x') + "\n");
  std::filesystem::remove(folder() / "u.ovt");
  expect_nothing_made("select repeat('x', 1025) as A",
                      "u.ovt: column A has a text of 1025 characters; a text has at most 1024");
  expect_nothing_made(
      "select * from (values ('ok'), ('\xCF\x89')) as t(A)",
      "cannot write u.ovt: Append failed, column A, row 2: the text has a character outside the "
      "ANSI code page");
  std::string columns = "select 0 as C0";
  for (int i = 1; i < 257; ++i) columns += ", " + std::to_string(i) + " as C" + std::to_string(i);
  expect_nothing_made(
      columns,
      "u.ovt: the table would need 257 words; a double-precision one holds 256 (a number takes "
      "one, a text one for every 4 characters)");
}

TEST_F(sql_table_test, blanks_at_the_end_need_no_room) {
  EXPECT_EQ(made("select 'abcd' || repeat(' ', 2000) as A"), "A\nabcd\n");
  EXPECT_EQ(fields(), names{"A:text:4"});
}

TEST_F(sql_table_test, a_failure_keeps_the_table_that_was_there) {
  made("select 1 as A");
  const std::string before = read("u.ovt");
  expect_nothing_made("select '\xCF\x89' as A",
                      "cannot write u.ovt: Append failed, column A, row 1: the text has a "
                      "character outside the ANSI code page");
  EXPECT_TRUE(read("u.ovt") == before);
}

TEST_F(sql_table_test, a_table_can_be_made_of_itself) {
  made("select i as A from range(1, 6) r(i)");
  EXPECT_EQ(made("select A * 2 as A from 'u.ovt' where A > 2"), "A\n6\n8\n10\n");
  EXPECT_EQ(
      made("create view v as from 'u.ovt'; select u.A as A from v u join 'u.ovt' using (A) where A < 10"),
      "A\n6\n8\n");
  EXPECT_EQ(files(), names{"u.ovt"});
}

TEST_F(sql_table_test, a_csv_can_be_made_of_itself) {
  write("a.csv", "A\n1\n2\n");
  const auto result = run({"sql", "select A + 1 as A from 'a.csv' order by 1", "--output", "a.csv"});
  // Some systems do not let go of a file that was read a moment ago.
  EXPECT_EQ(result.error,
            result.status == 0 ? "" : "ovfile: cannot replace a.csv: it is open in another program\n");
  EXPECT_EQ(read("a.csv"), result.status == 0 ? "A\n2\n3\n" : "A\n1\n2\n");
  EXPECT_EQ(files(), ovtest::names{"a.csv"});
}

TEST_F(sql_table_test, numbers_that_a_union_of_csv_files_makes_text_are_told) {
  write("a.csv", "BHID,CU,NI\nA,1.5,7\n");
  write("b.csv", "BHID,CU,NI\nB,,\n");
  const std::string both = "select * from 'a.csv' union all by name select * from 'b.csv'";
  const auto result = run({"sql", both, "--output", "u.ovt"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(
      result.error,
      "ovfile: the columns CU, NI are text, though each value reads as a number: cast(CU as double) makes "
      "numbers\n");
  EXPECT_EQ(fields(), (names{"BHID:text:4", "CU:text:4", "NI:text:4"}));
}

TEST_F(sql_table_test, number_texts_of_an_earlier_statement_are_told) {
  write("a.csv", "BHID,CU\nA,1.5\n");
  write("b.csv", "BHID,CU\nB,\n");
  const auto result = run({"sql",
                           "create table q as select * from 'a.csv' union all by name select * from 'b.csv'; "
                           "from q",
                           "--output", "u.ovt"});
  EXPECT_EQ(result.status, 0);
  EXPECT_NE(result.error.find("the column CU is text"), std::string::npos) << result.error;
}

TEST_F(sql_table_test, number_texts_of_other_text_files_are_told) {
  write("a.tsv", "BHID\tCU\nA\t1.5\n");
  write("b.tsv", "BHID\tCU\nB\t\n");
  write("a.json", R"([{"BHID": "A", "CU": 1.5}])");
  write("b.json", R"([{"BHID": "B", "CU": null}])");
  for (const std::string form : {"tsv", "json"}) {
    const auto result =
        run({"sql", "select * from 'a." + form + "' union all by name select * from 'b." + form + "'",
             "--output", "u.ovt"});
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.error.find("the column CU is text"), std::string::npos) << result.error;
  }
}

TEST_F(sql_table_test, texts_are_taken_for_texts_where_one_is_no_number) {
  write("a.csv", "BHID,CU\nA,<1\nB,2\n");
  EXPECT_EQ(made("from 'a.csv'"), "BHID,CU\nA,<1\nB,2\n");
  write("b.csv", "BHID,CU\nA,\n");
  EXPECT_EQ(made("from 'b.csv'"), "BHID,CU\nA,\n");
  make_table("t.ovt", "ID,CU\nX1,1\n");
  EXPECT_EQ(made("select substr(ID, 2) as ID from 't.ovt'"), "ID\n1\n");
}

TEST_F(sql_table_test, a_million_rows_come_back_equal) {
  const std::string rows =
      "select i as I, i % 7 as M, 'text ' || (i % 1000) as T, "
      "case when i % 5 = 0 then null else i * 0.5 end as N from range(1000000) r(i)";
  run_quietly({"sql", rows, "--output", "t.ovt"});
  EXPECT_EQ(csv("select count(*) as C, sum(I) as S, sum(M) as M, count(N) as N, sum(N) as H, count(distinct "
                "T) as D, "
                "max(T) as T from 't.ovt'"),
            "C,S,M,N,H,D,T\n1000000,499999500000,2999997,800000,200000000000,1000,text 999\n");
  EXPECT_EQ(
      csv("select I, M, T, N from 't.ovt' where I in (0, 61439, 61440, 999999)"),
      "I,M,T,N\n0,0,text 0,\n61439,0,text 439,30719.5\n61440,1,text 440,\n999999,0,text 999,499999.5\n");
  run_quietly({"sql", "from 't.ovt'", "--output", "u.ovt", "--threads", "4"});
  EXPECT_TRUE(read("t.ovt") == read("u.ovt"));
}

}  // namespace
