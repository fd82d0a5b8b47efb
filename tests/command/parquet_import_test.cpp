// ovfile import of Parquet that other programs made.
#include "command/parquet_fixture.h"

namespace {

using testing::HasSubstr;
using names = std::vector<std::string>;

class parquet_import_test : public ovtest::parquet_test {
 protected:
  std::string described() const { return run_quietly({"info", "t.ovt", "--json"}); }

  static std::string number(const std::string& name) {
    return R"({"name": ")" + name + R"(", "type": "number", "width": 4, "implicit": false, "default": null})";
  }
  static std::string text(const std::string& name, int width) {
    return R"({"name": ")" + name + R"(", "type": "text", "width": )" + std::to_string(width) +
           R"(, "implicit": false, "default": ""})";
  }
};

TEST_F(parquet_import_test, numbers_that_a_double_holds_are_numbers) {
  EXPECT_EQ(
      imported("select -1::tinyint a, 65535::usmallint b, 9007199254740992::bigint c, 1.25::decimal(9,2) d, "
               "true e, 0.1::double f, 'nan'::double g, '-inf'::double h, 0.1::float i"),
      "a,b,c,d,e,f,g,h,i\n-1,65535,9007199254740992,1.25,1,0.1,nan,-inf,0.1\n");
  for (const char* name : {"a", "b", "c", "d", "e", "f", "g", "h", "i"}) {
    EXPECT_THAT(described(), HasSubstr(number(name)));
  }
}

TEST_F(parquet_import_test, numbers_that_a_double_does_not_hold_are_text) {
  EXPECT_EQ(imported("select 9007199254740993::bigint a, 18446744073709551615::ubigint b, "
                     "123456789012345678.25::decimal(38,2) c union all select 1, 2::ubigint, 3"),
            "a,b,c\n9007199254740993,18446744073709551615,123456789012345678.25\n1,2,3.00\n");
  EXPECT_THAT(described(), HasSubstr(text("a", 16)));
}

TEST_F(parquet_import_test, everything_else_is_text) {
  EXPECT_EQ(imported("select date '2024-02-29' a, timestamp '2024-02-29 10:11:12.5' b, [1,2] c, {x: 1} d, "
                     "'ab'::blob e, time '10:11:12' f"),
            "a,b,c,d,e,f\n2024-02-29,2024-02-29 10:11:12.5,\"[1, 2]\",{'x': 1},ab,10:11:12\n");
}

TEST_F(parquet_import_test, null_is_absent_in_every_type) {
  EXPECT_EQ(imported("select null::int a, null::double b, null::varchar c, null::date d, null::boolean e, "
                     "null::bigint f, null::int[] g union all select 1, 2, 'x', null, null, null, null"),
            "a,b,c,d,e,f,g\n,,,,,,\n1,2,x,,,,\n");
  EXPECT_THAT(described(), HasSubstr(number("a")));
  EXPECT_THAT(described(), HasSubstr(text("d", 4)));
  EXPECT_THAT(described(), HasSubstr(number("f")));
}

TEST_F(parquet_import_test, a_table_without_rows_has_its_columns) {
  EXPECT_EQ(imported("select 1 a, 'x' b where false"), "a,b\n");
  EXPECT_THAT(described(), HasSubstr(number("a")));
  EXPECT_THAT(described(), HasSubstr(text("b", 4)));
}

TEST_F(parquet_import_test, many_rows_keep_their_order_and_their_nulls) {
  std::string csv = "a,b\n";
  for (int i = 0; i < 10000; ++i) {
    csv +=
        (i % 3 == 0 ? "" : std::to_string(i)) + "," + (i % 5 == 0 ? "" : "text " + std::to_string(i)) + "\n";
  }
  EXPECT_TRUE(imported("select case when range % 3 <> 0 then range end as a, "
                       "case when range % 5 <> 0 then 'text ' || range end as b from range(10000)") == csv);
}

TEST_F(parquet_import_test, floats_alone_make_a_table_of_single_precision) {
  EXPECT_EQ(imported("select 0.1::float a, 'inf'::float b, 'x' c"), "a,b,c\n0.1,inf,x\n");
  EXPECT_THAT(described(), HasSubstr("\"precision\": \"single\""));
  EXPECT_EQ(imported("select 0.1::float a, 0.1::double b"), "a,b\n0.1,0.1\n");
  EXPECT_THAT(described(), HasSubstr("\"precision\": \"double\""));
}

TEST_F(parquet_import_test, more_floats_than_a_single_precision_table_holds_make_one_of_double) {
  std::string columns = "1::float c1";
  for (int i = 2; i <= 65; ++i) columns += ", 1::float c" + std::to_string(i);
  imported("select " + columns);
  EXPECT_THAT(described(), HasSubstr("\"precision\": \"double\""));
}

TEST_F(parquet_import_test, nan_is_absent_on_demand) {
  const std::string query = "select 'nan'::double a, 'nan'::float b, 1 c, 'nan' d";
  EXPECT_EQ(imported(query), "a,b,c,d\nnan,nan,1,nan\n");
  EXPECT_EQ(imported(query, {"--absent", "nan"}), "a,b,c,d\n,,1,nan\n");
}

TEST_F(parquet_import_test, a_word_or_a_number_is_absent_on_demand) {
  const std::string query =
      "select -99 a, '-99' b, -99::double c, '-99.0' d, 1.5 e union all select 1, 'x', 2, '-', -99";
  EXPECT_EQ(imported(query, {"--absent", "-99"}), "a,b,c,d,e\n,,,-99.0,1.5\n1,x,2,-,\n");
  EXPECT_EQ(imported(query, {"--absent", "-"}), "a,b,c,d,e\n-99,-99,-99,-99.0,1.5\n1,x,2,,-99\n");
}

TEST_F(parquet_import_test, a_column_is_text_of_the_width_that_is_asked_for) {
  EXPECT_EQ(imported("select 5 a, 1::double b, 1.5::double c, 'x' d, null::double e",
                     {"--text", "a:10", "--text", "b:4", "--text", "c:4", "--text", "d:40", "--text", "e:4"}),
            "a,b,c,d,e\n5,1,1.5,x,\n");
  EXPECT_THAT(described(), HasSubstr(text("a", 12)));
  EXPECT_THAT(described(), HasSubstr(text("d", 40)));
  expect_failure({"import", "in.parquet", "t.ovt", "--text", "c:2"},
                 "t.ovt: column c has a text of 3 characters, and its width is to be 2");
  expect_failure({"import", "in.parquet", "t.ovt", "--text", "C:2"}, "there is no column C (--text)");
}

TEST_F(parquet_import_test, implicit_columns_and_a_description_are_added) {
  EXPECT_EQ(imported("select 5 a", {"--implicit", "Z=north", "--description", "it's \"mine\"", "--single"}),
            "a,Z\n5,north\n");
  EXPECT_THAT(described(), HasSubstr("\"description\": \"it's \\\"mine\\\"\""));
  EXPECT_THAT(described(), HasSubstr("\"precision\": \"single\""));
  expect_failure({"import", "in.parquet", "t.ovt", "--implicit", "a=1"},
                 "--implicit a: in.parquet has a column of that name");
  expect_failure({"import", "in.parquet", "t.ovt", "--description", "LINKx"},
                 "--description: a description that begins with LINK would make the table a link to another "
                 "file");
}

TEST_F(parquet_import_test, names_that_a_table_refuses_are_changed_and_told) {
  make_parquet(
      "in.parquet",
      "select 1 \"a b\", 2 \"AU ppm,x\", 3 \"averylongname\", 4 \"averylongnamex\", 5 \".a\", 6 \"é€\", "
      "7 \"日本\", 8 \"it's \"\"q\"\"\"");
  const ovtest::process_result result = run({"import", "in.parquet", "t.ovt"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.error,
            "ovfile: column 1 \"a b\" becomes a_b\n"
            "ovfile: column 2 \"AU ppm,x\" becomes AU_ppm_x\n"
            "ovfile: column 3 \"averylongname\" becomes averylon\n"
            "ovfile: column 4 \"averylongnamex\" becomes averylo2\n"
            "ovfile: column 5 \".a\" becomes _a\n"
            "ovfile: column 7 \"日本\" becomes __\n"
            "ovfile: column 8 \"it's \"q\"\" becomes it's_\"q\"\n");
  EXPECT_EQ(run_quietly({"export", "t.ovt"}),
            "a_b,AU_ppm_x,averylon,averylo2,_a,é€,__,\"it's_\"\"q\"\"\"\n1,2,3,4,5,6,7,8\n");
}

TEST_F(parquet_import_test, texts_of_windows_1252_and_of_1024_characters_are_kept) {
  EXPECT_EQ(imported("select 'Ž€ÿé' a, 'a' || chr(10) || 'b' b, 'x  ' c"), "a,b,c\nŽ€ÿé,\"a\nb\",x\n");
  const std::string longest(1024, 'x');
  EXPECT_EQ(imported("select repeat('x', 1024) a"), "a\n" + longest + "\n");
}

TEST_F(parquet_import_test, a_folder_of_files_is_one_table) {
  std::filesystem::create_directories(folder() / "in" / "deep");
  make_parquet("in/1.parquet", "select 1 a, 'x' b");
  make_parquet("in/deep/2.pq", "select 2 a, 'longer' b");
  make_parquet("in/.hidden.parquet", "select 3 a, 'hidden' b");
  write("in/readme.txt", "no Parquet");
  run_quietly({"import", "in", "t.ovt"});
  EXPECT_EQ(run_quietly({"export", "t.ovt"}), "a,b\n1,x\n2,longer\n");
}

TEST_F(parquet_import_test, floats_are_the_numbers_that_their_digits_say) {
  const std::string query =
      "select 1 ID, 1.2345678e-05::float AU union all select 2, 3e-8::float union all select 3, "
      "123.45678::float union all select 4, -0.0::float union all select 5, 'nan'::float union all "
      "select 6, '-inf'::float union all select 7, null union all select 8, -1e30::float union all "
      "select 9, 1e-45::float union all select 10, 3.4028235e38::float union all select 11, 0::float";
  EXPECT_EQ(imported(query),
            "ID,AU\n1,1.2345678e-05\n2,3e-08\n3,123.45678\n4,-0\n5,nan\n6,-inf\n7,\n8,\n9,1e-45\n"
            "10,3.4028235e+38\n11,0\n");
  EXPECT_THAT(described(), HasSubstr("\"precision\": \"double\""));
  EXPECT_EQ(imported("select 1 ID, 123.456::float AU union all select 2, 5", {"--absent", "123.456"}),
            "ID,AU\n1,\n2,5\n");
}

TEST_F(parquet_import_test, lost_digits_are_told) {
  make_parquet("in.parquet",
               "select 16777217 A, 16777216 B, 0.1::double C, 0.123456789::double D, 0.1::float E, 'x' F, "
               "'nan'::double G, 7 H, 12345678.5::decimal(12, 2) I, 1.25::decimal(12, 2) J, "
               "null::double K, 5000000000 L, -1e30::double M, true N, 1e-60::double O");
  const ovtest::process_result result = run({"import", "in.parquet", "t.ovt", "--single"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.error, "ovfile: warning: single precision loses digits of A, D, I, O\n");
  run_quietly({"import", "in.parquet", "t.ovt"});
}

TEST_F(parquet_import_test, lost_digits_of_an_implicit_column_are_told) {
  make_table("A\n1\n", {"--implicit", "X=0.123456789", "--implicit", "Y=0.1", "--implicit", "Z="});
  run_quietly({"export", "t.ovt", "in.parquet"});
  const ovtest::process_result result = run({"import", "in.parquet", "u.ovt", "--single"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.error, "ovfile: warning: single precision loses digits of X\n");
}

}  // namespace
