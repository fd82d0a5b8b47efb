// Folders of Parquet files, one for each value of some columns.
#include "command/parquet_fixture.h"

namespace {

namespace fs = std::filesystem;
using names = std::vector<std::string>;

class parquet_partition_test : public ovtest::parquet_test {
 protected:
  std::string back(const std::string& name, names options = {}) const {
    options.insert(options.begin(), {"import", name, "back.ovt"});
    run_quietly(options);
    return sorted_lines(run_quietly({"export", "back.ovt"}));
  }
};

TEST_F(parquet_partition_test, each_value_has_its_folder) {
  make_table("ZONE,BENCH,AU\nx,100,1\nx,110.5,2\ny,100,3\n,,4\n");
  run_quietly({"export", "t.ovt", "out", "--partition-by", "BENCH,ZONE"});
  EXPECT_EQ(names_in("out"), (names{"BENCH=100.0", "BENCH=110.5", "BENCH=__HIVE_DEFAULT_PARTITION__"}));
  EXPECT_EQ(names_in("out/BENCH=100.0"), (names{"ZONE=x", "ZONE=y"}));
  EXPECT_EQ(names_in("out/BENCH=100.0/ZONE=x"), (names{"data_0.parquet"}));
  EXPECT_EQ(back("out"), "ZONE,BENCH,AU\n,,4\nx,100,1\nx,110.5,2\ny,100,3\n");
  EXPECT_EQ(files(), (names{"back.ovt", "in.csv", "out", "t.ovt"}));
}

TEST_F(parquet_partition_test, one_of_the_folders_comes_back_by_itself) {
  make_table("ZONE,BENCH,AU\nx,100,1\nx,110,2\ny,100,3\n");
  run_quietly({"export", "t.ovt", "out", "--partition-by", "BENCH,ZONE"});
  EXPECT_EQ(back("out/BENCH=100.0"), "ZONE,AU\nx,1\ny,3\n");
  EXPECT_EQ(back("out/BENCH=100.0/ZONE=x"), "AU\n1\n");
  EXPECT_EQ(back("out/BENCH=100.0/ZONE=x/data_0.parquet"), "AU\n1\n");
}

TEST_F(parquet_partition_test, folders_above_what_was_named_have_no_columns) {
  fs::create_directories(folder() / path_of("CU=1/AU=é/in/ZONE=a%20b"));
  make_table("CU,A\n7,1\n8,2\n");
  run_quietly({"export", "t.ovt", "CU=1/a.parquet"});
  EXPECT_EQ(back("CU=1/a.parquet"), "CU,A\n7,1\n8,2\n");
  fs::rename(folder() / "CU=1" / "a.parquet", folder() / path_of("CU=1/AU=é/in/ZONE=a%20b/a.parquet"));
  for (const char* name : {"CU=1/AU=é/in", "CU=1/AU=é/in/", "./CU=1//AU=é/in"}) {
    EXPECT_EQ(back(name), "CU,A,ZONE\n7,1,a b\n8,2,a b\n") << name;
  }
}

TEST_F(parquet_partition_test, a_column_in_files_and_folders_has_the_same_values_in_both) {
  fs::create_directories(folder() / "in" / "CU=1" / "T=x");
  fs::create_directories(folder() / "in" / "CU=2.5" / "T=__HIVE_DEFAULT_PARTITION__");
  make_parquet("in/CU=1/T=x/a.parquet", "select 1::double cu, 'x' T, 3 A");
  make_parquet("in/CU=2.5/T=__HIVE_DEFAULT_PARTITION__/a.parquet",
               "select 2.5::double cu, null::varchar T, 4 A");
  EXPECT_EQ(back("in"), "cu,T,A\n1,x,3\n2.5,,4\n");
  make_parquet("in/CU=2.5/T=__HIVE_DEFAULT_PARTITION__/a.parquet", "select 2.5::double cu, 'y' T, 4 A");
  expect_failure({"import", "in", "new.ovt"},
                 "cannot read in: column T has other values in the files than in the names of their folders");
  make_parquet("in/CU=2.5/T=__HIVE_DEFAULT_PARTITION__/a.parquet",
               "select 2::double cu, null::varchar T, 4 A");
  expect_failure(
      {"import", "in", "new.ovt"},
      "cannot read in: column CU has other values in the files than in the names of their folders");
  EXPECT_EQ(files(), (names{"back.ovt", "in"}));
}

TEST_F(parquet_partition_test, folders_that_do_not_go_together_are_told) {
  fs::create_directories(folder() / "in" / "A=1" / "B=x");
  fs::create_directories(folder() / "in" / "A=2" / "C=x");
  make_parquet("in/A=1/B=x/1.parquet", "select 1 N");
  make_parquet("in/A=2/C=x/2.parquet", "select 2 N");
  const std::string line = run({"import", "in", "new.ovt"}).error;
  EXPECT_THAT(line, testing::StartsWith("ovfile: cannot read in: the folders of A=1"));
  EXPECT_THAT(line, testing::EndsWith("2.parquet have different columns\n"));
  fs::remove_all(folder() / "in" / "A=2");
  fs::create_directories(folder() / "in" / "A=1" / "B=x" / "a=3");
  fs::rename(folder() / "in/A=1/B=x/1.parquet", folder() / "in/A=1/B=x/a=3/1.parquet");
  EXPECT_THAT(run({"import", "in", "new.ovt"}).error, testing::EndsWith("1.parquet have a column twice\n"));
  EXPECT_EQ(files(), names{"in"});
}

TEST_F(parquet_partition_test, other_folders_may_stand_between) {
  fs::create_directories(folder() / "in" / "deep" / "N=1");
  fs::create_directories(folder() / "in" / "N=2" / "a=b=c");
  make_parquet("in/deep/N=1/1.parquet", "select 1 A");
  make_parquet("in/N=2/a=b=c/1.parquet", "select 2 A");
  EXPECT_EQ(back("in"), "A,N\n1,1\n2,2\n");
}

TEST_F(parquet_partition_test, texts_that_no_folder_may_be_called_come_back) {
  const std::string csv =
      "ZONE,AU\n%20,12\n*?[x],11\n50%,5\n\"a\\b\",10\n\"d\"\"q\",6\na b,3\na/b,1\na:b,15\na=b,2\nit's,4\n"
      "é€,7\n,8\n";
  make_table(csv);
  const std::string before = sorted_lines(run_quietly({"export", "t.ovt"}));
  for (const char* absent : {"null", "nan", "keep"}) {
    run_quietly({"export", "t.ovt", "out", "--partition-by", "ZONE", "--absent", absent});
    EXPECT_EQ(back("out"), before) << absent;
    fs::remove_all(folder() / "out");
  }
}

TEST_F(parquet_partition_test, a_column_whose_name_no_folder_may_have_comes_back) {
  make_table("A%20,É/X,B\n1,x,2\n3,y,4\n");
  run_quietly({"export", "t.ovt", "out", "--partition-by", "É/X,A%20"});
  EXPECT_EQ(back("out"), "A%20,É/X,B\n1,x,2\n3,y,4\n");
}

TEST_F(parquet_partition_test, numbers_come_back_as_numbers) {
  for (const bool single : {false, true}) {
    make_table("N,A\n100,1\n100.5,2\n-7e-05,3\n1e+25,4\n0.1,5\n-0,6\n,7\n",
               single ? names{"--single"} : names{});
    for (const char* absent : {"null", "nan", "keep"}) {
      run_quietly({"export", "t.ovt", "out", "--partition-by", "N", "--absent", absent});
      const names options = std::string(absent) == "nan" ? names{"--absent", "nan"} : names{};
      EXPECT_EQ(back("out", options), "N,A\n,7\n-0,6\n-7e-05,3\n0.1,5\n100,1\n100.5,2\n1e+25,4\n") << absent;
      fs::remove_all(folder() / "out");
    }
  }
}

TEST_F(parquet_partition_test, a_text_of_digits_stays_text) {
  make_table("T,A\n007,1\n12,2\n", {"--text", "T:8"});
  run_quietly({"export", "t.ovt", "out", "--partition-by", "T"});
  EXPECT_EQ(back("out"), "T,A\n007,1\n12,2\n");
  EXPECT_EQ(info("t.ovt", {"file"}), info("back.ovt", {"file"}));
}

TEST_F(parquet_partition_test, of_other_programs_a_folder_of_numbers_is_a_number) {
  run({"sql",
       "copy (select 1.5 as A, '7' as N, '07' as T, 'x' as U) to 'out' (format parquet, "
       "partition_by (N, T, U))"});
  EXPECT_EQ(back("out"), "A,N,T,U\n1.5,7,07,x\n");
  EXPECT_NE(run_quietly({"info", "back.ovt", "--json"}).find(R"({"name": "N", "type": "number")"),
            std::string::npos);
  EXPECT_NE(run_quietly({"info", "back.ovt", "--json"}).find(R"({"name": "T", "type": "text")"),
            std::string::npos);
}

TEST_F(parquet_partition_test, a_text_that_would_mean_no_value_is_refused) {
  for (const char* word : {"NULL", "null", "__HIVE_DEFAULT_PARTITION__"}) {
    make_table(std::string("T,A\nx,1\n") + word + ",2\n");
    expect_failure(
        {"export", "t.ovt", "out", "--partition-by", "T"},
        std::string("t.ovt: column T has the text ") + word + ", which as a folder's name means no value");
    run_quietly({"export", "t.ovt", "out", "--partition-by", "T", "--where", "A < 2"});
    fs::remove_all(folder() / "out");
  }
  EXPECT_EQ(files(), (names{"in.csv", "t.ovt"}));
}

TEST_F(parquet_partition_test, a_text_too_long_for_a_folder_leaves_nothing) {
  make_table("T,A\n" + std::string(254, 'x') + ",1\n");
  expect_failure({"export", "t.ovt", "out", "--partition-by", "T"},
                 "t.ovt: column T has the text " + std::string(40, 'x') +
                     "..., which is too long for the name of a folder");
  EXPECT_EQ(files(), (names{"in.csv", "t.ovt"}));
}

TEST_F(parquet_partition_test, a_text_just_short_enough_for_a_folder_comes_back) {
  const std::string csv = "T,A\n" + std::string(150, 'x') + ",1\n";
  make_table(csv);
  run_quietly({"export", "t.ovt", "out", "--partition-by", "T"});
  EXPECT_EQ(back("out"), csv);
}

TEST_F(parquet_partition_test, texts_that_differ_by_case_alone_are_refused_where_they_share_a_folder) {
  make_table("P,T,A\n1,Ab,1\n1,x,2\n2,aB,3\n2,é,4\n2,É,5\n");
  expect_failure({"export", "t.ovt", "out", "--partition-by", "T"},
                 "t.ovt: column T has the texts Ab and aB, whose folders would be one where the case of "
                 "letters does not count");
  EXPECT_EQ(files(), (names{"in.csv", "t.ovt"}));
  run_quietly({"export", "t.ovt", "out", "--partition-by", "P,T"});
  EXPECT_EQ(back("out"), "P,T,A\n1,Ab,1\n1,x,2\n2,aB,3\n2,É,5\n2,é,4\n");
}

TEST_F(parquet_partition_test, a_folder_that_holds_something_is_left_alone) {
  make_table("T,A\nx,1\n");
  fs::create_directory(folder() / "out");
  run_quietly({"export", "t.ovt", "out/", "--partition-by", "T"});
  EXPECT_EQ(names_in("out"), (names{"T=x"}));
  const std::string line = "cannot write out: there is something of that name already";
  expect_failure({"export", "t.ovt", "out", "--partition-by", "A"}, line);
  EXPECT_EQ(names_in("out"), (names{"T=x"}));
  write("file", "old");
  expect_failure({"export", "t.ovt", "file", "--partition-by", "A"},
                 "cannot write file: there is something of that name already");
  EXPECT_EQ(read("file"), "old");
  expect_failure({"export", "t.ovt", "none/out", "--partition-by", "A"},
                 "cannot write none/out: No such file or directory");
  EXPECT_EQ(files(), (names{"file", "in.csv", "out", "t.ovt"}));
}

TEST_F(parquet_partition_test, columns_that_make_no_sense_are_wrong_usage) {
  make_table("T,A\nx,1\n");
  expect_wrong_usage({"export", "t.ovt", "out", "--partition-by", "T,A"},
                     "--partition-by: no column would be left for the files");
  expect_wrong_usage({"export", "t.ovt", "out", "--partition-by", "T", "--columns", "A"},
                     "--partition-by T: --columns leaves this column out");
  expect_wrong_usage({"export", "t.ovt", "out", "--partition-by", "T,T"}, "--partition-by names T twice");
  expect_wrong_usage({"export", "t.ovt", "-", "--partition-by", "T"}, "--partition-by needs a folder's name");
  expect_failure({"export", "t.ovt", "out", "--partition-by", "B"},
                 "t.ovt has no column B; its columns are T, A");
  expect_wrong_usage({"export", "t.ovt", "t.ovt", "--partition-by", "T"},
                     "the table and the CSV are one file: t.ovt");
  EXPECT_EQ(files(), (names{"in.csv", "t.ovt"}));
}

}  // namespace
