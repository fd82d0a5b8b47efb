// The forms in which rows come out.
#include "command/sql_fixture.h"

namespace {

using ovtest::names;
using sql_output_test = ovtest::sql_test;

/// One row of every type that is no plain text.
constexpr const char* every_type =
    "select true as a, 1::tinyint as b, 4::bigint as c, 170141183460469231731687303715884105727::hugeint as "
    "d, "
    "1.5::real as e, 0.1::double as f, 'nan'::double as g, 'inf'::double as h, '-inf'::real as i, "
    "12.340::decimal(10, 3) as j, date '2024-02-29' as k, timestamp '2024-02-29 12:34:56.789' as l, "
    "time '01:02:03' as m, interval 3 day as n, '\\x00a'::blob as o, [1, 2, null] as p, {'x': 1, 'y': 'z'} "
    "as q, "
    "null as r, 'b'::enum('a', 'b') as s, uuid '00000000-0000-0000-0000-000000000001' as t";

TEST_F(sql_output_test, a_table_is_aligned) {
  make_table("t.ovt", "BHID,AU,N\nDH1,1.5,10\nDH22,,200\n\xC3\xA9,-0.25,3\n");
  EXPECT_EQ(run_quietly({"sql", "select * from 't.ovt'"}),
            "BHID     AU    N\n"
            "DH1     1.5   10\n"
            "DH22         200\n"
            "\xC3\xA9     -0.25    3\n");
  EXPECT_EQ(run_quietly({"sql", "select * from 't.ovt' limit 1", "-o", "table", "--output", "out.csv"}), "");
  EXPECT_EQ(read("out.csv"), "BHID   AU   N\nDH1   1.5  10\n");
}

TEST_F(sql_output_test, a_table_shows_no_control_characters) {
  EXPECT_EQ(run_quietly({"sql", "select 'a' || chr(10) || chr(27) || chr(0) || 'b' as X, 1 as Y"}),
            "X      Y\na...b  1\n");
}

TEST_F(sql_output_test, rows_far_down_may_be_wider_than_the_first) {
  std::string expected = "X\n";
  for (int i = 0; i < 5000; ++i) expected += i < 4999 ? "0\n" : "123456\n";
  const std::string sql = "select case when i < 4999 then '0' else '123456' end as X from range(5000) r(i)";
  EXPECT_EQ(run_quietly({"sql", sql}), expected);
}

TEST_F(sql_output_test, csv_has_quotes_where_they_are_needed) {
  EXPECT_EQ(
      csv("select 'a,b' as \"X,Y\", 'say \"hi\"' as Q, 'two' || chr(10) || 'lines' as L, '' as E, null as N"),
      "\"X,Y\",Q,L,E,N\n\"a,b\",\"say \"\"hi\"\"\",\"two\nlines\",,\n");
}

TEST_F(sql_output_test, an_empty_line_never_stands_for_a_row) {
  EXPECT_EQ(csv("select * from (values ('a'), (null), ('b')) as t(X)"), "X\na\n\"\"\nb\n");
}

TEST_F(sql_output_test, csv_of_every_type) {
  EXPECT_EQ(csv(every_type),
            "a,b,c,d,e,f,g,h,i,j,k,l,m,n,o,p,q,r,s,t\n"
            "true,1,4,170141183460469231731687303715884105727,1.5,0.1,nan,inf,-inf,12.340,2024-02-29,"
            "2024-02-29 12:34:56.789,01:02:03,3 days,\\x00a,\"[1, 2, NULL]\",\"{'x': 1, 'y': z}\",,b,"
            "00000000-0000-0000-0000-000000000001\n");
}

TEST_F(sql_output_test, json_of_every_type) {
  EXPECT_EQ(
      run_quietly({"sql", every_type, "-o", "json"}),
      "[\n{\"a\": true, \"b\": 1, \"c\": 4, \"d\": 170141183460469231731687303715884105727, \"e\": 1.5, "
      "\"f\": 0.1, \"g\": \"nan\", \"h\": \"inf\", \"i\": \"-inf\", \"j\": 12.340, \"k\": \"2024-02-29\", "
      "\"l\": \"2024-02-29 12:34:56.789\", \"m\": \"01:02:03\", \"n\": \"3 days\", \"o\": \"\\\\x00a\", "
      "\"p\": [1,2,null], \"q\": {\"x\":1,\"y\":\"z\"}, \"r\": null, \"s\": \"b\", "
      "\"t\": \"00000000-0000-0000-0000-000000000001\"}\n]\n");
}

TEST_F(sql_output_test, json_has_control_characters_by_their_numbers) {
  EXPECT_EQ(
      run_quietly({"sql",
                   "select chr(129) || chr(127) as A, [chr(155) || chr(127) || '\"\xC3\xA9\\NI', 'NI'] as "
                   "B",
                   "-o", "json"}),
      "[\n{\"A\": \"\\u0081\\u007f\", \"B\": [\"\\u009b\\u007f\\\"\xC3\xA9\\\\NI\",\"NI\"]}\n]\n");
}

TEST_F(sql_output_test, json_escapes_and_gives_each_column_a_name_of_its_own) {
  EXPECT_EQ(run_quietly({"sql",
                         "select 'a\"\\' || chr(10) as \"K\"\"\", 2 as A, 3 as A, 4 as a union all "
                         "select '\xC3\xA9', 5, 6, 7",
                         "--output", "out.json"}),
            "");
  EXPECT_EQ(read("out.json"),
            "[\n{\"K\\\"\": \"a\\\"\\\\\\u000a\", \"A\": 2, \"A_2\": 3, \"a\": 4},\n"
            "{\"K\\\"\": \"\xC3\xA9\", \"A\": 5, \"A_2\": 6, \"a\": 7}\n]\n");
}

TEST_F(sql_output_test, json_has_no_names_for_what_is_no_number) {
  EXPECT_EQ(run_quietly(
                {"sql",
                 "select ['nan'::double, 'inf'::double, '-inf'::double, -1.5, null] as L, "
                 "{'Infinity': 'nan'::real, 'b': 'NaN \"-Infinity\" \\'} as S, map {'NaN': 'inf'::real} as M",
                 "-o", "json"}),
            "[\n{\"L\": [\"nan\",\"inf\",\"-inf\",-1.5,null], \"S\": {\"Infinity\":\"nan\",\"b\":\"NaN "
            "\\\"-Infinity\\\" \\\\\"}, \"M\": {\"NaN\":\"inf\"}}\n]\n");
}

TEST_F(sql_output_test, no_rows_leave_the_names) {
  const std::string sql = "select 1 as A, 'x' as B where false";
  EXPECT_EQ(csv(sql), "A,B\n");
  EXPECT_EQ(run_quietly({"sql", sql}), "A  B\n");
  EXPECT_EQ(run_quietly({"sql", sql, "-o", "json"}), "[]\n");
}

TEST_F(sql_output_test, parquet_comes_back) {
  make_table("t.ovt", "BHID,AU\nDH1,1.5\nDH2,\n");
  run_quietly({"sql", "select * from 't.ovt'", "--output", "out.parquet"});
  EXPECT_EQ(csv("select * from 'out.parquet'"), "BHID,AU\nDH1,1.5\nDH2,\n");
  run_quietly({"sql", "select * from 't.ovt' where AU > 1", "-o", "parquet", "--output", "other"});
  EXPECT_EQ(csv("select * from read_parquet('other')"), "BHID,AU\nDH1,1.5\n");
  EXPECT_EQ(files(), (names{"other", "out.parquet", "t.ovt"}));
}

TEST_F(sql_output_test, hundreds_of_columns) {
  std::string sql = "select 0 as c0";
  std::string header = "c0";
  std::string row = "0";
  for (int i = 1; i < 700; ++i) {
    sql += ", " + std::to_string(i) + " as c" + std::to_string(i);
    header += ",c" + std::to_string(i);
    row += "," + std::to_string(i);
  }
  EXPECT_EQ(csv(sql), header + "\n" + row + "\n");
}

TEST_F(sql_output_test, null_can_have_a_text) {
  const std::string sql = "select null::double as A, 'x' as B union all select 2, null order by 2";
  EXPECT_EQ(csv(sql, {"--absent", "NA"}), "A,B\nNA,x\n2,NA\n");
  EXPECT_EQ(csv(sql, {"--absent", "a,b"}), "A,B\n\"a,b\",x\n2,\"a,b\"\n");
  EXPECT_EQ(csv(sql, {"--absent", ""}), "A,B\n,x\n2,\n");
}

TEST_F(sql_output_test, a_file_that_was_there_is_replaced_by_a_whole_one_alone) {
  write("out.csv", "old");
  EXPECT_EQ(run({"sql", "select 'x'::int from range(2)", "--output", "out.csv"}).status, 1);
  EXPECT_EQ(read("out.csv"), "old");
  run_quietly({"sql", "select 1 as A", "--output", "out.csv"});
  EXPECT_EQ(read("out.csv"), "A\n1\n");
  EXPECT_EQ(files(), names{"out.csv"});
}

TEST_F(sql_output_test, a_suffix_that_tells_no_form_is_wrong_usage) {
  for (const char* name : {"result.xlsx", "out.tsv", "out.csv.gz", "out.ovtx", "a.b/out.x"}) {
    expect_wrong_usage({"sql", "select 1 as A", "--output", name},
                       std::string(name) +
                           ": a name that ends in .ovt, .csv, .json, .parquet, .pq or .txt tells the form; "
                           "any other needs -o table, csv, json or parquet");
  }
  EXPECT_EQ(files(), names{});
  run_quietly({"sql", "select 1 as A", "-o", "csv", "--output", "out.xlsx"});
  run_quietly({"sql", "select 1 as A", "--output", "out.TXT"});
  run_quietly({"sql", "select 1 as A", "--output", "out"});
  run_quietly({"sql", "select 1 as A", "--output", ".out"});
  EXPECT_EQ(read("out.xlsx") + read("out.TXT") + read("out") + read(".out"), "A\n1\nA\n1\nA\n1\nA\n1\n");
}

}  // namespace
