#include "command/command_test.h"

namespace {

using sign_test = ovtest::command_test;

TEST_F(sign_test, the_digits_and_the_name) {
  round_trip("A,B\n1.5,x\n2,y\n", {"--description", "d"});
  // Of "d--1-2-2", "A-2-4--1000000000000000019884624838656", "B-3-4-    ", "1.5", "x   ", "2", "y   ".
  EXPECT_EQ(run_quietly({"sign", "t.ovt"}), "2dbf40d23bc86145e17d2ce9975035bcdcbe84e3  t.ovt\n");
  EXPECT_EQ(run_quietly({"sign", "t.ovt", "--tight"}), "2dbf40d23bc86145e17d2ce9975035bcdcbe84e3  t.ovt\n");
  // Of "2-2", "A-0-4--1000000000000000019884624838656", "B-1-4-    ", "1.5", "x   ", "2", "y   ".
  EXPECT_EQ(run_quietly({"sign", "t.ovt", "--loose"}), "252d045c337efa8537ff24275c3c3e4d3b19d6de  t.ovt\n");
  // Of "d--1-2-2", "A-2-4--1000000000000000019884624838656.00", "B-3-4-    ", "1.50", "x   ", "2.00", "y   ".
  EXPECT_EQ(run_quietly({"sign", "t.ovt", "--decimals", "2"}),
            "519db096222490c767ff72e14cca8c0083878aee  t.ovt\n");
}

TEST_F(sign_test, a_loose_one_does_not_see_precision_and_order) {
  round_trip("A,B\n1.5,x\n2,y\n", {"--description", "d"});
  const std::string loose = run_quietly({"sign", "t.ovt", "--loose"});
  const std::string tight = run_quietly({"sign", "t.ovt"});
  round_trip("B,A\nx,1.5\ny,2\n", {"--description", "e"});
  EXPECT_EQ(run_quietly({"sign", "t.ovt", "--loose"}), loose);
  EXPECT_NE(run_quietly({"sign", "t.ovt"}), tight);
}

TEST_F(sign_test, wrong_usage_is_told) {
  expect_failure({"sign", "none.ovt"}, "none.ovt: File does not exist");
  round_trip("A\n1\n");
  EXPECT_EQ(run({"sign", "t.ovt", "--loose", "--tight"}).status, 2);
  expect_wrong_usage({"sign", "t.ovt", "--decimals", "-1"},
                     "--decimals: -1 is not in the range 0 to 1000 (see --help)");
  expect_wrong_usage({"sign", "t.ovt", "--decimals", "1.5"},
                     "--decimals: 1.5 is not a whole number (see --help)");
}

}  // namespace
