#include "command/edit_fixture.h"

namespace {

using ovtest::names;
using truncate_test = ovtest::edit_test;

TEST_F(truncate_test, the_first_rows_stay) {
  in_both([&](const names& options) {
    round_trip("A,B\n1,a\n2,b\n3,c\n", options);
    run_quietly({"truncate", "t.ovt", "--rows", "2"});
    EXPECT_EQ(exported(), "A,B\n1,a\n2,b\n");
    run_quietly({"truncate", "t.ovt", "--rows", "2"});
    EXPECT_EQ(exported(), "A,B\n1,a\n2,b\n");
    run_quietly({"truncate", "t.ovt", "--rows", "0"});
    EXPECT_EQ(exported(), "A,B\n");
  });
}

TEST_F(truncate_test, more_rows_than_there_are_change_nothing) {
  round_trip("A,B\n1,a\n2,b\n3,c\n");
  expect_unchanged({"truncate", "t.ovt", "--rows", "4"}, "t.ovt has 3 rows, fewer than 4");
  round_trip("A\n1\n");
  expect_unchanged({"truncate", "t.ovt", "--rows", "2"}, "t.ovt has 1 row, fewer than 2");
  EXPECT_EQ(run({"truncate", "t.ovt"}).status, 2);
}

TEST_F(truncate_test, the_number_of_rows_is_a_whole_number) {
  round_trip("A\n1\n");
  const std::string before = read("t.ovt");
  for (const std::string wrong : {"x", "1.5", "1e3", "1e0", "0x1", "1 ", "+1", "--1"}) {
    expect_wrong_usage({"truncate", "t.ovt", "--rows=" + wrong},
                       "--rows: " + wrong + " is not a whole number (see --help)");
  }
  EXPECT_EQ(run({"truncate", "t.ovt", "--rows="}).status, 2);
  for (const std::string wrong : {"-1", "2147483648", "99999999999999999999", "-99999999999999999999"}) {
    expect_wrong_usage({"truncate", "t.ovt", "--rows=" + wrong},
                       "--rows: " + wrong + " is not in the range 0 to 2147483647 (see --help)");
  }
  EXPECT_TRUE(read("t.ovt") == before);
  expect_failure({"truncate", "t.ovt", "--rows=2147483647"}, "t.ovt has 1 row, fewer than 2147483647");
}

TEST_F(truncate_test, zeros_in_front_make_no_other_number) {
  round_trip("A\n1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11\n");
  run_quietly({"truncate", "t.ovt", "--rows", "010"});
  EXPECT_EQ(exported(), "A\n1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n");
}

}  // namespace
