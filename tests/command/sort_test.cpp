#include <limits>

#include "command/edit_fixture.h"
#include "ovfile/smart.h"

namespace {

using ovtest::names;

class sort_test : public ovtest::edit_test {
 protected:
  /// What a table of this CSV is after it is sorted.
  std::string sorted(const std::string& csv, const names& options, const names& kind = {}) const {
    round_trip(csv, kind);
    names arguments = {"sort", "t.ovt"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    run_quietly(arguments);
    EXPECT_EQ(files(), (names{"in.csv", "t.ovt"}));
    return exported();
  }
};

TEST_F(sort_test, numbers_go_up_or_down) {
  in_both([&](const names& kind) {
    EXPECT_EQ(sorted("A,B\n3,c\n-1,m\n10,j\n0.5,h\n", {"--by", "A"}, kind), "A,B\n-1,m\n0.5,h\n3,c\n10,j\n");
    EXPECT_EQ(sorted("A,B\n3,c\n-1,m\n10,j\n0.5,h\n", {"--by", "A", "--descending"}, kind),
              "A,B\n10,j\n3,c\n0.5,h\n-1,m\n");
  });
}

TEST_F(sort_test, texts_go_up_or_down) {
  in_both([&](const names& kind) {
    EXPECT_EQ(sorted("A,N\nb,1\nab,2\na,3\nB,4\n\xC3\xA4,5\n", {"--by", "A"}, kind),
              "A,N\nB,4\na,3\nab,2\nb,1\n\xC3\xA4,5\n");
    EXPECT_EQ(sorted("A,N\nb,1\nab,2\na,3\nB,4\n", {"--by", "A", "--descending"}, kind),
              "A,N\nb,1\nab,2\na,3\nB,4\n");
  });
}

TEST_F(sort_test, texts_are_compared_to_their_last_character) {
  const std::string csv =
      "A,N\nabcdefghij,1\nabcd,2\nabcdefghi,3\nabcdefghih,4\nabcd,5\n\xE2\x82\xAC,6\n,7\n";
  EXPECT_EQ(sorted(csv, {"--by", "A"}),
            "A,N\n,7\nabcd,2\nabcd,5\nabcdefghi,3\nabcdefghih,4\nabcdefghij,1\n\xE2\x82\xAC,6\n");
}

TEST_F(sort_test, many_different_texts_are_sorted) {
  std::string csv = "A,N\n";
  std::string expected = "A,N\n";
  for (int i = 0; i < 5000; ++i) {
    csv += "HOLE" + std::to_string(10000 + i * 7 % 5000) + "," + std::to_string(i) + "\n";
  }
  std::vector<int> row(5000);
  for (int i = 0; i < 5000; ++i) row[static_cast<std::size_t>(i * 7 % 5000)] = i;
  for (int i = 0; i < 5000; ++i) {
    expected +=
        "HOLE" + std::to_string(10000 + i) + "," + std::to_string(row[static_cast<std::size_t>(i)]) + "\n";
  }
  in_both([&](const names& kind) { EXPECT_EQ(sorted(csv, {"--by", "A"}, kind), expected); });
}

TEST_F(sort_test, both_zeros_are_equal) {
  EXPECT_EQ(sorted("A,N\n0,1\n-0,2\n0,3\n-1,4\n", {"--by", "A"}), "A,N\n-1,4\n0,1\n-0,2\n0,3\n");
}

TEST_F(sort_test, absent_numbers_are_the_smallest_and_blank_texts_first) {
  EXPECT_EQ(sorted("A,B\n1,x\n,y\n-5,z\n", {"--by", "A"}), "A,B\n,y\n-5,z\n1,x\n");
  EXPECT_EQ(sorted("A,B\n1,x\n,y\n-5,z\n", {"--by", "A", "--descending"}), "A,B\n1,x\n-5,z\n,y\n");
  EXPECT_EQ(sorted("A,B\n1,x\n2,\n3,a\n", {"--by", "B"}), "A,B\n2,\n3,a\n1,x\n");
}

TEST_F(sort_test, what_is_no_number_stands_behind_all_numbers) {
  round_trip("A,N\n1,1\n2,2\n3,3\n4,4\n");
  const auto table = ovfile::create_table();
  const ovfile::text name{std::string_view((folder() / "t.ovt").string())};
  ASSERT_EQ(table->Open(name.get(), 0), S_OK);
  const double values[] = {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                           -std::numeric_limits<double>::infinity()};
  for (LONG row = 1; row <= 3; ++row) {
    ASSERT_EQ(table->GetRowAt(row), S_OK);
    ASSERT_EQ(table->SetColumnDouble(1, values[row - 1]), S_OK);
  }
  ASSERT_EQ(table->Close(), S_OK);
  run_quietly({"sort", "t.ovt", "--by", "A"});
  EXPECT_EQ(exported(), "A,N\n-inf,3\n4,4\ninf,2\nnan,1\n");
  run_quietly({"sort", "t.ovt", "--by", "A", "--descending"});
  EXPECT_EQ(exported(), "A,N\nnan,1\ninf,2\n4,4\n-inf,3\n");
}

TEST_F(sort_test, a_further_column_decides_where_the_first_does_not) {
  const std::string csv = "H,F,N\nb,5,1\na,10,2\nb,0,3\na,2,4\na,2,5\n";
  EXPECT_EQ(sorted(csv, {"--by", "H", "--by", "F"}), "H,F,N\na,2,4\na,2,5\na,10,2\nb,0,3\nb,5,1\n");
  EXPECT_EQ(sorted(csv, {"--by", "H,F"}), "H,F,N\na,2,4\na,2,5\na,10,2\nb,0,3\nb,5,1\n");
  EXPECT_EQ(sorted(csv, {"--by", "H,F", "--descending"}), "H,F,N\nb,5,1\nb,0,3\na,10,2\na,2,4\na,2,5\n");
}

TEST_F(sort_test, equal_rows_keep_their_order) {
  std::string csv = "A,N\n";
  std::string even;
  std::string odd;
  for (int i = 1; i <= 2000; ++i) {
    const std::string line = std::to_string(i % 2) + "," + std::to_string(i) + "\n";
    csv += line;
    (i % 2 == 0 ? even : odd) += line;
  }
  in_both([&](const names& kind) {
    EXPECT_EQ(sorted(csv, {"--by", "A"}, kind), "A,N\n" + even + odd);
    EXPECT_EQ(sorted(csv, {"--by", "A", "--descending"}, kind), "A,N\n" + odd + even);
  });
}

TEST_F(sort_test, a_table_of_few_rows_and_many_columns_is_sorted) {
  EXPECT_EQ(sorted("A,B,C,D\n1,2,3,9\n1,2,3,8\n", {"--by", "D"}), "A,B,C,D\n1,2,3,8\n1,2,3,9\n");
  EXPECT_EQ(sorted("A,B,C,D\n1,2,3,9\n", {"--by", "D"}), "A,B,C,D\n1,2,3,9\n");
  EXPECT_EQ(sorted("A,B\n", {"--by", "B"}), "A,B\n");
}

TEST_F(sort_test, implicit_columns_and_the_definition_stay) {
  round_trip("A,B\n2,x\n1,y\n", {"--implicit", "ZONE=north", "--description", "Sorted or not"});
  const std::string schema = run_quietly({"schema", "t.ovt", "--json"});
  run_quietly({"sort", "t.ovt", "--by", "ZONE", "--by", "A"});
  EXPECT_EQ(exported(), "A,B,ZONE\n1,y,north\n2,x,north\n");
  EXPECT_EQ(run_quietly({"schema", "t.ovt", "--json"}), schema);
}

TEST_F(sort_test, a_column_that_is_not_there_changes_nothing) {
  round_trip("A,B\n2,x\n1,y\n");
  expect_unchanged({"sort", "t.ovt", "--by", "A", "--by", "C"},
                   "t.ovt has no column C; its columns are A, B");
  EXPECT_EQ(run({"sort", "t.ovt"}).status, 2);
  const std::string before = read("t.ovt");
  expect_wrong_usage({"sort", "t.ovt", "--by", ""}, "the name of a column is empty");
  expect_wrong_usage({"sort", "t.ovt", "--by", "A", "--by", ""}, "the name of a column is empty");
  EXPECT_TRUE(read("t.ovt") == before);
}

}  // namespace
