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
  for (const char* wrong : {"-1", "x", "1.5"}) {
    EXPECT_EQ(run({"truncate", "t.ovt", std::string("--rows=") + wrong}).status, 2);
  }
  EXPECT_EQ(run({"truncate", "t.ovt"}).status, 2);
}

}  // namespace
