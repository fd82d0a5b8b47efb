// Folders whose files have not all the same columns.
#include "command/parquet_fixture.h"

namespace {

using testing::HasSubstr;
using names = std::vector<std::string>;

class parquet_union_test : public ovtest::parquet_test {
 protected:
  void SetUp() override {
    parquet_test::SetUp();
    std::filesystem::create_directory(folder() / "in");
  }

  /// Makes a file of each query, in/1.parquet and so on.
  void make_files(const names& queries) const {
    for (std::size_t i = 0; i < queries.size(); ++i) {
      make_parquet("in/" + std::to_string(i + 1) + ".parquet", queries[i]);
    }
  }

  /// The CSV of the table made of the folder; expects these words on standard error.
  std::string together(const std::string& words = {}, names options = {}) const {
    options.insert(options.begin(), {"import", "in", "t.ovt"});
    const ovtest::process_result result = run(options);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error, words);
    return run_quietly({"export", "t.ovt"});
  }

  std::string described() const { return run_quietly({"info", "t.ovt", "--json"}); }
};

TEST_F(parquet_union_test, all_columns_come_and_keep_their_values) {
  make_files({"select 1::integer CU, 'x' T", "select 0.7::double CU, 5 AU", "select 8 au, 9::double cu"});
  EXPECT_EQ(together("ovfile: column T is not in 2.parquet and 1 other file: absent there\n"
                     "ovfile: column AU is not in 1.parquet: absent there\n"),
            "CU,T,AU\n1,x,\n0.7,,5\n9,,8\n");
  make_files({"select 1 a", "select 'x' b", "select 2 a"});
  EXPECT_EQ(together("ovfile: column a is not in 2.parquet: absent there\n"
                     "ovfile: column b is not in 1.parquet and 1 other file: absent there\n"),
            "a,b\n1,\n,x\n2,\n");
}

TEST_F(parquet_union_test, columns_in_another_order_are_the_same) {
  make_files({"select 1 A, 'x' B", "select 'y' B, 2 A"});
  EXPECT_EQ(together(), "A,B\n1,x\n2,y\n");
}

TEST_F(parquet_union_test, numbers_of_several_types_keep_their_digits) {
  make_files({"select 123.45678::float A, 1.5::float B, 1::bigint C, true D, 1.25::decimal(5, 2) E",
              "select 0.123456789::double A, 16777217::integer B, 0.5::double C, 7 D, 3::bigint E",
              "select null::double A, null::integer B, null::double C, null::integer D, null::bigint E",
              "select -1e30::float A, 'nan'::float B, 2::bigint C, false D, 0.1::decimal(18, 9) E"});
  EXPECT_EQ(together(),
            "A,B,C,D,E\n123.45678,1.5,1,1,1.25\n0.123456789,16777217,0.5,7,3\n,,,,\n,nan,2,0,0.1\n");
  EXPECT_THAT(described(), HasSubstr("\"precision\": \"double\""));
}

TEST_F(parquet_union_test, what_is_no_number_everywhere_is_text) {
  make_files({"select 9007199254740993 A, 1.0::float B, 5 C, date '2024-02-29' D, 2.0::double E",
              "select 0.5::double A, 'x' B, date '2024-02-29' C, timestamp '2024-02-29 12:34:56' D, 'y' E",
              "select 3::double A, 'y' B, date '2025-01-01' C, null::timestamp D, null E"});
  EXPECT_EQ(together(),
            "A,B,C,D,E\n9007199254740993,1,5,2024-02-29,2\n0.5,x,2024-02-29,2024-02-29 12:34:56,y\n"
            "3,y,2025-01-01,,\n");
}

TEST_F(parquet_union_test, rows_come_file_by_file) {
  make_files({"select range::integer A from range(300000)",
              "select (range + 300000)::double A from range(300000)",
              "select (range + 600000)::integer A from range(300000)"});
  std::string expected = "A\n";
  for (int i = 0; i < 900000; ++i) expected += std::to_string(i) + "\n";
  EXPECT_TRUE(together() == expected);
}

TEST_F(parquet_union_test, hundreds_of_files_that_alternate) {
  for (int i = 0; i < 200; ++i) {
    std::filesystem::create_directory(folder() / "in" / ("N=" + std::to_string(i + 100)));
  }
  EXPECT_EQ(run({"sql",
                 "copy (select range + 100 N, range * 2 A from range(0, 200, 2)) to 'in' (format "
                 "parquet, partition_by (N), overwrite_or_ignore); copy (select range + 100 N, range + "
                 "0.5::double A from range(1, 200, 2)) to 'in' (format parquet, partition_by (N), "
                 "overwrite_or_ignore)"})
                .error,
            "");
  std::string expected = "A,N\n";
  for (int i = 0; i < 200; ++i) {
    expected +=
        std::to_string(i % 2 == 0 ? i * 2 : i) + (i % 2 == 0 ? "," : ".5,") + std::to_string(i + 100) + "\n";
  }
  EXPECT_EQ(together(), expected);
}

TEST_F(parquet_union_test, exports_of_both_precisions_are_one_in_double_precision) {
  make_table("A,T\n0.123456789,x\n");
  run_quietly({"export", "t.ovt", "in/2.parquet"});
  make_table("A,T\n123.4567,a long text\n", {"--single"});
  run_quietly({"export", "t.ovt", "in/1.parquet"});
  EXPECT_EQ(together(), "A,T\n123.4567,a long text\n0.123456789,x\n");
  EXPECT_THAT(described(), HasSubstr("\"precision\": \"double\""));
}

TEST_F(parquet_union_test, what_the_files_tell_of_different_tables_is_not_taken_for_all) {
  make_table("A\n1\n2\n", {"--implicit", "Z=5", "--description", "one"});
  run_quietly({"export", "t.ovt", "in/1.parquet"});
  run_quietly({"export", "t.ovt", "in/2.parquet"});
  EXPECT_EQ(together(), "A,Z\n1,5\n2,5\n1,5\n2,5\n");
  EXPECT_THAT(described(), HasSubstr("\"description\": \"one\""));
  EXPECT_THAT(described(), HasSubstr("\"implicit\": true"));
  make_table("A\n3\n", {"--implicit", "Z=6", "--description", "other"});
  run_quietly({"export", "t.ovt", "in/2.parquet"});
  EXPECT_EQ(together(), "A,Z\n1,5\n2,5\n3,6\n");
  EXPECT_THAT(described(), testing::Not(HasSubstr("\"description\": \"one\"")));
  EXPECT_THAT(described(), testing::Not(HasSubstr("\"implicit\": true")));
  make_parquet("in/2.parquet", "select 7::double A");
  EXPECT_EQ(together("ovfile: column Z is not in 2.parquet: absent there\n"), "A,Z\n1,5\n2,5\n7,\n");
}

TEST_F(parquet_union_test, columns_of_folders_stand_beside_them) {
  for (const char* name : {"in/Z=1", "in/Z=2"}) std::filesystem::create_directory(folder() / name);
  make_parquet("in/Z=1/a.parquet", "select 1::integer CU");
  make_parquet("in/Z=2/a.parquet", "select 0.7::double CU, 'x' T");
  EXPECT_EQ(together("ovfile: column T is not in " + (std::filesystem::path("Z=1") / "a.parquet").string() +
                     ": absent there\n"),
            "CU,T,Z\n1,,1\n0.7,x,2\n");
}

TEST_F(parquet_union_test, a_file_that_is_no_parquet_makes_no_table) {
  make_files({"select 1 A", "select 0.5::double A"});
  write("in/3.parquet", "A,B,C,D\n1,2,3,4\n5,6,7,8\n");
  const ovtest::process_result result = run({"import", "in", "t.ovt"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.error, testing::StartsWith("ovfile: cannot read in: "));
  EXPECT_EQ(files(), names{"in"});
}

}  // namespace
