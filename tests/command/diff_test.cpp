#include "command/command_test.h"

namespace {

using names = std::vector<std::string>;

class diff_test : public ovtest::command_test {
 protected:
  void make(const std::string& table, const std::string& csv, const names& options = {}) const {
    write("in.csv", csv);
    names arguments = {"import", "in.csv", table, "--description", "d"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    EXPECT_EQ(run(arguments).status, 0);
  }

  /// What a comparison of a.ovt and b.ovt writes, which differ.
  std::string difference(const names& options = {}) const {
    names arguments = {"diff", "a.ovt", "b.ovt"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const ovtest::process_result result = run(arguments);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, "");
    return result.output;
  }

  void expect_equal(const names& options = {}) const {
    names arguments = {"diff", "a.ovt", "b.ovt"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    EXPECT_EQ(run_quietly(arguments), "");
  }

  void expect_trouble(const names& arguments, const std::string& line) const {
    expect_wrong_usage(arguments, line);
  }
};

TEST_F(diff_test, equal_tables_have_nothing_to_tell) {
  make("a.ovt", "A,B\n1,x\n,\n");
  make("b.ovt", "A,B\n1,x\n,\n");
  expect_equal();
  expect_equal({"--key", "A"});
  EXPECT_EQ(run_quietly({"diff", "a.ovt", "a.ovt"}), "");
}

TEST_F(diff_test, rows_are_compared_in_their_order) {
  make("a.ovt", "A,B\n1,x\n2,y\n3,\"a,b\"\n");
  make("b.ovt", "A,B\n1,x\n2,z\n,\"a,b\"\n4,w\n");
  EXPECT_EQ(difference(),
            "--- a.ovt\n"
            "+++ b.ovt\n"
            "@@ rows: A,B @@\n"
            "-2 2,y\n"
            "+2 2,z\n"
            "-3 3,\"a,b\"\n"
            "+3 ,\"a,b\"\n"
            "+4 4,w\n");
}

TEST_F(diff_test, a_table_that_ends_early_lacks_rows) {
  make("a.ovt", "A\n1\n2\n3\n");
  make("b.ovt", "A\n1\n");
  EXPECT_EQ(difference(), "--- a.ovt\n+++ b.ovt\n@@ rows: A @@\n-2 2\n-3 3\n");
  make("b.ovt", "A\n");
  EXPECT_EQ(difference(), "--- a.ovt\n+++ b.ovt\n@@ rows: A @@\n-1 1\n-2 2\n-3 3\n");
}

TEST_F(diff_test, a_key_brings_rows_together) {
  make("a.ovt", "H,F,V\nh1,0,1\nh1,5,2\nh2,0,3\n");
  make("b.ovt", "H,F,V\nh3,0,9\nh2,0,3\nh1,5,7\nh1,0,1\n");
  EXPECT_EQ(difference({"--key", "H,F"}),
            "--- a.ovt\n"
            "+++ b.ovt\n"
            "@@ rows: H,F,V @@\n"
            "-2 h1,5,2\n"
            "+3 h1,5,7\n"
            "+1 h3,0,9\n");
  make("b.ovt", "H,F,V\nh2,0,3\nh1,5,2\nh1,0,1\n");
  expect_equal({"--key", "H,F"});
}

TEST_F(diff_test, both_zeros_are_one_key) {
  for (const names& options : {names{}, names{"--single"}}) {
    make("a.ovt", "F,V\n5,1\n-0,2\n", options);
    make("b.ovt", "F,V\n0,2\n5,1\n", options);
    expect_equal({"--key", "F"});
    make("b.ovt", "F,V\n0,3\n5,1\n", options);
    EXPECT_EQ(difference({"--key", "F"}), "--- a.ovt\n+++ b.ovt\n@@ rows: F,V @@\n-2 -0,2\n+1 0,3\n");
  }
  make("a.ovt", "F,V\n-0,1\n0,2\n");
  make("b.ovt", "F,V\n0,1\n-0,2\n");
  expect_equal({"--key", "F"});
}

TEST_F(diff_test, rows_of_one_key_meet_in_their_order) {
  make("a.ovt", "H,V\nh,1\nh,2\nh,3\n");
  make("b.ovt", "H,V\nh,1\ng,0\nh,5\n");
  EXPECT_EQ(difference({"--key", "H"}),
            "--- a.ovt\n"
            "+++ b.ovt\n"
            "@@ rows: H,V @@\n"
            "-2 h,2\n"
            "+3 h,5\n"
            "-3 h,3\n"
            "+2 g,0\n");
}

TEST_F(diff_test, numbers_may_be_near) {
  make("a.ovt", "A\n1\n2\n");
  make("b.ovt", "A\n1.25\n1.5\n");
  expect_equal({"--tolerance", "0.5"});
  EXPECT_EQ(difference({"--tolerance", "0.25"}), "--- a.ovt\n+++ b.ovt\n@@ rows: A @@\n-2 2\n+2 1.5\n");
  make("b.ovt", "A\n1\n\"\"\n");
  EXPECT_EQ(difference({"--tolerance", "1e31"}), "--- a.ovt\n+++ b.ovt\n@@ rows: A @@\n-2 2\n+2 \n");
  expect_trouble({"diff", "a.ovt", "b.ovt", "--tolerance", "-1"},
                 "--tolerance -1: expected a number of 0 or more");
  expect_trouble({"diff", "a.ovt", "b.ovt", "--tolerance", "x"},
                 "--tolerance x: expected a number of 0 or more; it is not a number");
  expect_trouble({"diff", "a.ovt", "b.ovt", "--tolerance", "1e400"},
                 "--tolerance 1e400: expected a number of 0 or more; it is beyond what a number can hold");
}

TEST_F(diff_test, definitions_are_compared) {
  make("a.ovt", "A,B,C\n1,x,5\n", {"--implicit", "Z=7"});
  write("in.csv", "C,A,B,D\n5,1,long text,2\n");
  run_quietly({"import", "in.csv", "b.ovt", "--single", "--description", "e", "--implicit", "Z=8"});
  EXPECT_EQ(difference(),
            "--- a.ovt\n"
            "+++ b.ovt\n"
            "@@ precision @@\n"
            "-double\n"
            "+single\n"
            "@@ description @@\n"
            "-d\n"
            "+e\n"
            "@@ columns @@\n"
            "-B text 4 stored\n"
            "-Z number implicit 7\n"
            "+B text 12 stored\n"
            "+D number stored absent\n"
            "+Z number implicit 8\n"
            "@@ rows: A,B,C,Z @@\n"
            "-1 1,x,5,7\n"
            "+1 1,long text,5,8\n");
}

TEST_F(diff_test, the_order_of_columns_is_part_of_the_definition) {
  make("a.ovt", "A,B\n1,2\n");
  make("b.ovt", "B,A\n2,1\n");
  EXPECT_EQ(difference(), "--- a.ovt\n+++ b.ovt\n@@ order of columns @@\n-A,B\n+B,A\n");
}

TEST_F(diff_test, a_column_of_texts_here_and_numbers_there_is_not_compared) {
  make("a.ovt", "A,B\n1,2\n");
  make("b.ovt", "A,B\n1,x\n");
  EXPECT_EQ(difference(), "--- a.ovt\n+++ b.ovt\n@@ columns @@\n-B number stored absent\n+B text 4 stored\n");
  expect_trouble({"diff", "a.ovt", "b.ovt", "--key", "B"}, "--key B: numbers in a.ovt, texts in b.ovt");
}

TEST_F(diff_test, floats_are_what_they_read_as) {
  make("a.ovt", "A\n0.1\n\"\"\n");
  make("b.ovt", "A\n0.1\n\"\"\n", {"--single"});
  EXPECT_EQ(difference(), "--- a.ovt\n+++ b.ovt\n@@ precision @@\n-double\n+single\n");
  EXPECT_EQ(difference({"--key", "A"}), "--- a.ovt\n+++ b.ovt\n@@ precision @@\n-double\n+single\n");
}

TEST_F(diff_test, descriptions_may_be_left_out) {
  make("a.ovt", "A\n1\n");
  write("in.csv", "A\n1\n");
  run_quietly({"import", "in.csv", "b.ovt", "--description", "e"});
  EXPECT_EQ(difference(), "--- a.ovt\n+++ b.ovt\n@@ description @@\n-d\n+e\n");
  expect_equal({"--ignore-description"});
}

TEST_F(diff_test, descriptions_are_compared_to_their_last_characters) {
  const std::string long_one = std::string(60, 'd') + "wxyz";
  for (std::size_t i = 60; i < 64; ++i) {
    std::string other = long_one;
    other[i] = '!';
    write("in.csv", "A\n1\n");
    run_quietly({"import", "in.csv", "a.ovt", "--description", long_one});
    run_quietly({"import", "in.csv", "b.ovt", "--description", other});
    EXPECT_EQ(difference(), "--- a.ovt\n+++ b.ovt\n@@ description @@\n-" + long_one + "\n+" + other + "\n");
    expect_equal({"--ignore-description"});
    run_quietly({"import", "in.csv", "b.ovt", "--description", long_one});
    expect_equal();
  }
}

TEST_F(diff_test, what_goes_wrong_is_no_difference) {
  make("a.ovt", "A\n1\n");
  expect_trouble({"diff", "a.ovt", "none.ovt"}, "none.ovt: File does not exist");
  expect_trouble({"diff", "none.ovt", "a.ovt"}, "none.ovt: File does not exist");
  expect_trouble({"diff", "a.ovt", "a.ovt", "--key", "B"}, "a.ovt has no column B; its columns are A");
  expect_trouble({"diff", "a.ovt", "a.ovt", "--key", ""}, "the name of a column is empty");
  EXPECT_EQ(run({"diff", "a.ovt"}).status, 2);
}

TEST_F(diff_test, many_rows_in_any_order) {
  std::string up = "N,V\n";
  std::string down = "N,V\n";
  for (int i = 1; i <= 3000; ++i) {
    up += std::to_string(i) + "," + std::to_string(i * 2) + "\n";
    const int n = 3001 - i;
    down += std::to_string(n) + "," + std::to_string(n == 1234 ? 0 : n * 2) + "\n";
  }
  make("a.ovt", up);
  make("b.ovt", down);
  EXPECT_EQ(difference({"--key", "N"}),
            "--- a.ovt\n+++ b.ovt\n@@ rows: N,V @@\n-1234 1234,2468\n+1767 1234,0\n");
}

}  // namespace
