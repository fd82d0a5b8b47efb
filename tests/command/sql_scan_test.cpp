// Tables in a question.
#include "command/sql_fixture.h"

namespace {

using ovtest::names;
using sql_scan_test = ovtest::sql_test;

TEST_F(sql_scan_test, tables_are_joined_and_grouped) {
  make_table("assays.ovt", "BHID,FROM,TO,CU\nA,0,1,1\nA,1,2,2\nB,0,1,5\nC,0,1,9\n");
  make_table("collars.ovt", "BHID,X\nA,10\nB,20\n");
  EXPECT_EQ(
      csv("select BHID, avg(CU) from 'assays.ovt' join 'collars.ovt' using (BHID) group by BHID order by 1"),
      "BHID,avg(CU)\nA,1.5\nB,5\n");
}

TEST_F(sql_scan_test, a_table_can_stand_there_several_times) {
  make_table("t.ovt", "BHID,FROM,TO\nA,0,1\nA,1,2\nA,2,3\n");
  EXPECT_EQ(csv("select u.FROM as F, v.TO as T from 't.ovt' u join 't.ovt' v on u.TO = v.FROM order by F"),
            "F,T\n0,2\n1,3\n");
  EXPECT_EQ(csv("select count(*) as N from 't.ovt', 't.ovt' u, read_ovt('t.ovt') v"), "N\n27\n");
}

TEST_F(sql_scan_test, absent_values_are_null_or_what_is_asked_for) {
  make_table("t.ovt", "A,T\n1,x\n,\n3,z\n");
  const std::string sql = "select A, T, A is null as NA, T is null as NT from 't.ovt'";
  EXPECT_EQ(csv(sql), "A,T,NA,NT\n1,x,false,false\n,,true,true\n3,z,false,false\n");
  EXPECT_EQ(csv(sql, {"--absent", "nan"}), "A,T,NA,NT\n1,x,false,false\nnan,,false,true\n3,z,false,false\n");
  EXPECT_EQ(csv(sql, {"--absent", "keep"}),
            "A,T,NA,NT\n1,x,false,false\n-1e+30,,false,false\n3,z,false,false\n");
  EXPECT_EQ(csv(sql, {"--absent", "NA"}), "A,T,NA,NT\n1,x,false,false\nNA,NA,true,true\n3,z,false,false\n");
  EXPECT_EQ(csv("select sum(A) as S, count(A) as N, count(*) as M from 't.ovt'"), "S,N,M\n4,2,3\n");
}

TEST_F(sql_scan_test, each_call_can_say_what_absent_is) {
  make_table("t.ovt", "A\n1\n\"\"\n");
  EXPECT_EQ(csv("select u.A as U, v.A as V, w.A as W from read_ovt('t.ovt', absent := 'null') u, "
                "read_ovt('t.ovt', absent := 'nan') v, read_ovt('t.ovt', absent := 'keep') w "
                "where u.A is null and isnan(v.A) and w.A < -1e29"),
            "U,V,W\n,nan,-1e+30\n");
  EXPECT_EQ(csv("select A from read_ovt('t.ovt', absent := 'null')", {"--absent", "nan"}), "A\n1\n\"\"\n");
}

TEST_F(sql_scan_test, texts_of_every_length_lose_their_blanks_at_the_end_alone) {
  make_table("t.ovt",
             "T\nabcdefghijkl\nabcdefghijklm\n\"  in front\"\n\"behind  \"\nx\n"
             "0123456789012345678901234567890123456789\n\xC3\xA9t\xC3\xA9 \xE2\x82\xAC\n");
  EXPECT_EQ(csv("select T, length(T) as N from 't.ovt'"),
            "T,N\nabcdefghijkl,12\nabcdefghijklm,13\n  in front,10\nbehind,6\nx,1\n"
            "0123456789012345678901234567890123456789,40\n\xC3\xA9t\xC3\xA9 \xE2\x82\xAC,5\n");
  EXPECT_EQ(csv("select T from 't.ovt' where T in ('x', 'abcdefghijkl', 'abcdefghijklm', '\xC3\xA9t\xC3\xA9 "
                "\xE2\x82\xAC') "
                "order by T"),
            "T\nabcdefghijkl\nabcdefghijklm\nx\n\xC3\xA9t\xC3\xA9 \xE2\x82\xAC\n");
}

TEST_F(sql_scan_test, numbers_of_four_bytes_are_widened_by_their_digits) {
  make_table("t.ovt", "A\n0.1\n1234.567\n", {"--single"});
  EXPECT_EQ(csv("select A, A * 10 as B, typeof(A) as T from 't.ovt'"),
            "A,B,T\n0.1,1,DOUBLE\n1234.567,12345.67,DOUBLE\n");
  EXPECT_EQ(csv("select A, A::double as B, typeof(A) as T from read_ovt('t.ovt', widen := false)"),
            "A,B,T\n0.1,0.10000000149011612,FLOAT\n1234.567,1234.5670166015625,FLOAT\n");
  // A float of more than 24 bits stands for fewer digits than it has when it is written out.
  make_table("large.ovt", "A\n16777216\n1234568000\n-98765430000\n", {"--single"});
  EXPECT_EQ(csv("select A, A + 1 as B from 'large.ovt'"),
            "A,B\n16777216,16777217\n1234568000,1234568001\n-98765430000,-98765429999\n");
}

TEST_F(sql_scan_test, columns_that_are_not_named_are_not_needed) {
  make_table("t.ovt", "A,B\n1,x\n2,y\n");
  EXPECT_EQ(csv("select count(*) as N from 't.ovt'"), "N\n2\n");
  EXPECT_EQ(csv("select 7 as S from 't.ovt'"), "S\n7\n7\n");
  EXPECT_EQ(csv("select B from 't.ovt' where A = 2"), "B\ny\n");
  EXPECT_EQ(csv("select B, A, B from 't.ovt' order by A desc"), "B,A,B\ny,2,y\nx,1,x\n");
  EXPECT_EQ(csv("select exists (select 1 from 't.ovt') as E"), "E\ntrue\n");
}

TEST_F(sql_scan_test, implicit_columns_are_columns) {
  make_table("t.ovt", "A\n1\n2\n", {"--implicit", "XINC=5", "--implicit", "ROCK=ore"});
  EXPECT_EQ(csv("select * from 't.ovt' where XINC = 5 and ROCK = 'ore'"), "A,XINC,ROCK\n1,5,ore\n2,5,ore\n");
}

TEST_F(sql_scan_test, a_table_without_rows_has_none) {
  make_table("t.ovt", "A,B\n");
  EXPECT_EQ(csv("select * from 't.ovt'"), "A,B\n");
  EXPECT_EQ(csv("select count(*) as N, max(A) as M from 't.ovt'"), "N,M\n0,\n");
  EXPECT_EQ(csv("select count(*) as N from read_ovt('t.ovt', condition := 'A > 0')"), "N\n0\n");
}

TEST_F(sql_scan_test, names_that_differ_in_case_alone_get_a_number) {
  make_table("t.ovt", "Au,AU,au,B\n1,2,3,4\n");
  EXPECT_EQ(csv("select * from 't.ovt'"), "Au,AU_2,au_3,B\n1,2,3,4\n");
  EXPECT_EQ(csv("select au_2 + AU_3 as S, AU as A from 't.ovt'"), "S,A\n5,1\n");
}

TEST_F(sql_scan_test, names_of_files_may_hold_anything) {
  make_table("t.ovt", "A\n1\n");
  std::filesystem::create_directory(folder() / "my folder");
  const auto source = folder() / "t.ovt";
  for (const std::string name :
       {"my folder/a b.ovt", "it's.ovt", "\xC3\xA9\xE2\x82\xAC.ovt", "T.OVT2.ovt", "a;b.ovt"}) {
    std::filesystem::copy_file(source,
                               folder() / std::filesystem::path(std::u8string(name.begin(), name.end())));
    std::string quoted = name;
    if (const auto quote = quoted.find('\''); quote != quoted.npos) quoted.insert(quote, "'");
    EXPECT_EQ(csv("select A from '" + quoted + "'"), "A\n1\n") << name;
    EXPECT_EQ(csv("select A from \"" + name + "\""), "A\n1\n") << name;
  }
  const auto absolute = (folder() / "t.ovt").u8string();
  EXPECT_EQ(csv("select A from '" + std::string(absolute.begin(), absolute.end()) + "'"), "A\n1\n");
  EXPECT_EQ(csv("select A from read_ovt('./my folder/../t.ovt')"), "A\n1\n");
}

TEST_F(sql_scan_test, a_table_need_not_be_named_as_one) {
  make_table("t.ovt", "A\n1\n");
  std::filesystem::rename(folder() / "t.ovt", folder() / "t.dat");
  EXPECT_EQ(csv("select A from read_ovt('t.dat')"), "A\n1\n");
}

TEST_F(sql_scan_test, a_csv_is_read_likewise) {
  make_table("t.ovt", "BHID,A\nX,1\nY,2\n");
  write("more.csv", "BHID,B\nX,5\nZ,6\n");
  EXPECT_EQ(csv("select BHID, A, B from 't.ovt' join 'more.csv' using (BHID)"), "BHID,A,B\nX,1,5\n");
}

TEST_F(sql_scan_test, a_condition_chooses_rows) {
  std::string text = "I,T\n";
  for (int i = 0; i < 70000; ++i) text += std::to_string(i) + (i % 1000 == 999 ? ",hit\n" : ",\n");
  make_table("t.ovt", text);
  EXPECT_EQ(csv("select count(*) as N, sum(I) as S from read_ovt('t.ovt', condition := 'I >= 69998')"),
            "N,S\n2,139997\n");
  EXPECT_EQ(csv("select count(*) as N, max(I) as M, min(T) as T from read_ovt('t.ovt', condition := 'T == "
                "\"hit\"')"),
            "N,M,T\n70,69999,hit\n");
  EXPECT_EQ(csv("select T, I from read_ovt('t.ovt', condition := 'T == \"hit\"') where I > 68000"),
            "T,I\nhit,68999\nhit,69999\n");
  EXPECT_EQ(csv("select count(*) as N from read_ovt('t.ovt', condition := 'I < 0')"), "N\n0\n");
}

TEST_F(sql_scan_test, rows_keep_their_order_whatever_the_threads) {
  constexpr int rows = 250'000;
  make_long_table("t.ovt", rows);
  std::string expected = "I\n";
  for (int i = 1; i <= rows; ++i) expected += std::to_string(i) + "\n";
  EXPECT_TRUE(csv("select I from 't.ovt'", {"--threads", "4"}) == expected);
  EXPECT_TRUE(csv("select I::int as I from 't.ovt' where I > 0", {"--threads", "4"}) == expected);
  EXPECT_TRUE(csv("create table u as from 't.ovt'; from u", {"--threads", "4"}) == expected);
  EXPECT_EQ(csv("select I from 't.ovt' limit 2 offset 199999", {"--threads", "4"}), "I\n200000\n200001\n");
  const std::string sums =
      "select count(*) as N, sum(I) as S, min(I) as A, max(I) as B, count(distinct I) as D from 't.ovt'";
  for (const char* threads : {"1", "2", "7"}) {
    EXPECT_EQ(csv(sums, {"--threads", threads}), "N,S,A,B,D\n250000,31250125000,1,250000,250000\n");
  }
}

TEST_F(sql_scan_test, a_scan_may_end_early) {
  make_long_table("t.ovt", 200'000);
  EXPECT_EQ(csv("select I from 't.ovt' limit 1"), "I\n1\n");
  EXPECT_EQ(
      csv("select (select I from 't.ovt' limit 1) as A, count(*) as N from (from 't.ovt' limit 100000)"),
      "A,N\n1,100000\n");
}

}  // namespace
