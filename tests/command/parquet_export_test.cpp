// ovfile export to a Parquet file.
#include "command/parquet_fixture.h"
#include "support/shared_data.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;
using names = std::vector<std::string>;

class parquet_export_test : public ovtest::parquet_test {
 protected:
  /// What SQL sees in a Parquet file.
  std::string seen(const std::string& query) const {
    return run_quietly({"sql", query, "-o", "csv", "--absent", "NULL"});
  }
};

TEST_F(parquet_export_test, an_absent_value_is_null) {
  make_table("A,T\n1.5,x\n,\n-1e30,y\n");
  run_quietly({"export", "t.ovt", "out.parquet"});
  EXPECT_EQ(seen("select A, T from 'out.parquet'"), "A,T\n1.5,x\nNULL,NULL\nNULL,y\n");
}

TEST_F(parquet_export_test, an_absent_number_is_nan_or_stays_on_demand) {
  make_table("A,T\n1.5,x\n,\n");
  run_quietly({"export", "t.ovt", "nan.parquet", "--absent", "nan"});
  EXPECT_EQ(seen("select A, T from 'nan.parquet'"), "A,T\n1.5,x\nnan,NULL\n");
  run_quietly({"export", "t.ovt", "keep.parquet", "--absent", "keep"});
  EXPECT_EQ(seen("select A, T is null as N, length(T) as L from 'keep.parquet'"),
            "A,N,L\n1.5,false,1\n-1e+30,false,0\n");
  run_quietly({"import", "nan.parquet", "nan.ovt", "--absent", "nan"});
  run_quietly({"import", "keep.parquet", "keep.ovt"});
  EXPECT_EQ(run_quietly({"export", "nan.ovt"}), "A,T\n1.5,x\n,\n");
  EXPECT_EQ(run_quietly({"export", "keep.ovt"}), "A,T\n1.5,x\n,\n");
  expect_wrong_usage({"export", "t.ovt", "out.parquet", "--absent", "x"},
                     "--absent of a Parquet file is null, nan or keep");
}

TEST_F(parquet_export_test, numbers_of_4_bytes_stay_so) {
  make_table("A,T\n0.1,x\n", {"--single"});
  run_quietly({"export", "t.ovt", "out.parquet"});
  EXPECT_EQ(seen("select typeof(A) as a, typeof(T) as t from 'out.parquet'"), "a,t\nFLOAT,VARCHAR\n");
  make_table("A\n0.1\n");
  run_quietly({"export", "t.ovt", "out.parquet"});
  EXPECT_EQ(seen("select typeof(A) as a from 'out.parquet'"), "a\nDOUBLE\n");
}

TEST_F(parquet_export_test, columns_and_rows_are_chosen) {
  make_table("A,B,C\n1,x,3\n2,y,4\n3,z,5\n");
  run_quietly({"export", "t.ovt", "out.pq", "--columns", "C,A", "--where", "A > 1"});
  run_quietly({"import", "out.pq", "back.ovt"});
  EXPECT_EQ(run_quietly({"export", "back.ovt"}), "C,A\n4,2\n5,3\n");
  run_quietly({"export", "t.ovt", "OUT.PARQUET", "--where", "A > 100"});
  run_quietly({"import", "OUT.PARQUET", "back.ovt"});
  EXPECT_EQ(run_quietly({"export", "back.ovt"}), "A,B,C\n");
}

TEST_F(parquet_export_test, a_column_may_go_out_twice) {
  make_table("A,B\n1,x\n");
  run_quietly({"export", "t.ovt", "out.parquet", "--columns", "A,A"});
  EXPECT_EQ(seen("select * from 'out.parquet'"), "A,A_2\n1,1\n");
}

TEST_F(parquet_export_test, a_bad_condition_or_column_is_told_as_everywhere) {
  make_table("A\n1\n");
  const ovtest::process_result result = run({"export", "t.ovt", "out.parquet", "--where", "A >"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.error, "ovfile: --where: a value is missing at position 4\n  A >\n     ^\n");
  expect_failure({"export", "t.ovt", "out.parquet", "--columns", "a"}, "t.ovt has no column a; it has A");
  EXPECT_EQ(files(), (names{"in.csv", "t.ovt"}));
}

TEST_F(parquet_export_test, a_file_is_replaced_in_one_step) {
  make_table("A\n1\n");
  write("out.parquet", "old");
  expect_failure({"export", "t.ovt", "out.parquet", "--columns", "X"},
                 "t.ovt has no column X; its columns are A");
  EXPECT_EQ(read("out.parquet"), "old");
  run_quietly({"export", "t.ovt", "out.parquet"});
  EXPECT_EQ(read("out.parquet").substr(0, 4), "PAR1");
  EXPECT_EQ(files(), (names{"in.csv", "out.parquet", "t.ovt"}));
}

TEST_F(parquet_export_test, the_table_itself_is_no_target) {
  make_table("A\n1\n");
  std::filesystem::rename(folder() / "t.ovt", folder() / "t.parquet");
  const std::string before = read("t.parquet");
  expect_wrong_usage({"export", "t.parquet", "t.parquet"},
                     "the table and the Parquet are one file: t.parquet");
  EXPECT_EQ(read("t.parquet"), before);
}

TEST_F(parquet_export_test, a_folder_is_no_file_to_write) {
  make_table("A\n1\n");
  std::filesystem::create_directory(folder() / "out.parquet");
  expect_failure({"export", "t.ovt", "out.parquet"}, "cannot write out.parquet: it is not a regular file");
  expect_failure_with_reason({"export", "t.ovt", "none/out.parquet"}, "cannot create none/out.parquet");
}

TEST_F(parquet_export_test, a_table_without_columns_cannot_go_out) {
  const auto source = ovtest::shared_folder() / "golden" / "d_no_fields.ovt";
  if (!std::filesystem::exists(source)) GTEST_SKIP() << source << " is not there";
  ovtest::copy_writable(source, folder() / "t.ovt");
  expect_failure({"export", "t.ovt", "out.parquet"}, "t.ovt has no columns; a Parquet file needs one");
}

TEST_F(parquet_export_test, too_little_memory_is_told_and_leaves_nothing) {
  make_table("A\n1\n");
  const ovtest::process_result result = run({"export", "t.ovt", "out.parquet", "--memory", "100KB"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.error, HasSubstr("Out of Memory Error"));
  EXPECT_EQ(files(), (names{"in.csv", "t.ovt"}));
}

TEST_F(parquet_export_test, the_options_of_the_database_are_not_for_csv) {
  make_table("A\n1\n");
  expect_wrong_usage({"export", "t.ovt", "out.csv", "--memory", "1GB"},
                     "--memory and --threads are for Parquet");
  expect_wrong_usage({"export", "t.ovt", "--threads", "2"}, "--memory and --threads are for Parquet");
}

TEST_F(parquet_export_test, threads_do_not_change_the_order_of_rows) {
  std::string csv = "A,B\n";
  for (int i = 0; i < 200000; ++i) csv += std::to_string(i) + ",x\n";
  make_table(csv);
  for (const char* threads : {"1", "4"}) {
    run_quietly({"export", "t.ovt", "out.parquet", "--threads", threads});
    run_quietly({"import", "out.parquet", "back.ovt", "--threads", threads});
    EXPECT_EQ(run_quietly({"diff", "t.ovt", "back.ovt"}), "");
  }
}

}  // namespace
