#include <nlohmann/json.hpp>

#include "command/edit_fixture.h"

namespace {

using ovtest::names;

class alter_test : public ovtest::edit_test {
 protected:
  void make(const names& options = {}) const {
    names all = {"--implicit", "ZONE=north"};
    all.insert(all.end(), options.begin(), options.end());
    round_trip("A,B,C\n1,x,0.1\n2,yyyyy,\n3,,-5\n", all);
  }

  std::string altered(names options) const {
    options.insert(options.begin(), {"alter", "t.ovt"});
    run_quietly(std::move(options));
    EXPECT_EQ(files(), (names{"in.csv", "t.ovt"}));
    return exported();
  }

  nlohmann::json schema() const { return nlohmann::json::parse(run_quietly({"schema", "t.ovt", "--json"})); }
};

TEST_F(alter_test, columns_go_and_all_rows_stay) {
  in_both([&](const names& options) {
    make(options);
    EXPECT_EQ(altered({"--drop", "B"}), "A,C,ZONE\n1,0.1,north\n2,,north\n3,-5,north\n");
    EXPECT_EQ(altered({"--drop", "ZONE,A"}), "C\n0.1\n\"\"\n-5\n");
  });
}

TEST_F(alter_test, columns_come_with_a_default) {
  in_both([&](const names& options) {
    make(options);
    EXPECT_EQ(
        altered({"--drop", "B,C,ZONE", "--add", "N", "--add", "T:6", "--add", "X=0.1", "--add", "U:3=a=b"}),
        "A,N,T,X,U\n1,,,0.1,a=b\n2,,,0.1,a=b\n3,,,0.1,a=b\n");
    EXPECT_EQ(schema()["fields"], nlohmann::json::parse(R"([
        {"name":"A","type":"number","width":4,"implicit":false,"default":null},
        {"name":"N","type":"number","width":4,"implicit":false,"default":null},
        {"name":"T","type":"text","width":8,"implicit":false,"default":""},
        {"name":"X","type":"number","width":4,"implicit":false,"default":0.1},
        {"name":"U","type":"text","width":4,"implicit":false,"default":"a=b"}])"));
  });
}

TEST_F(alter_test, columns_get_another_order) {
  make();
  EXPECT_EQ(altered({"--order", "C,A"}), "C,A,B,ZONE\n0.1,1,x,north\n,2,yyyyy,north\n-5,3,,north\n");
  EXPECT_EQ(altered({"--add", "NEW=7", "--order", "ZONE,NEW", "--drop", "A"}),
            "ZONE,NEW,C,B\nnorth,7,0.1,x\nnorth,7,,yyyyy\nnorth,7,-5,\n");
  EXPECT_EQ(
      schema()["fields"][0],
      nlohmann::json::parse(R"({"name":"ZONE","type":"text","width":8,"implicit":true,"default":"north"})"));
}

TEST_F(alter_test, a_dropped_name_can_be_added_anew) {
  make();
  EXPECT_EQ(altered({"--drop", "A", "--add", "A:4=new", "--order", "A"}),
            "A,B,C,ZONE\nnew,x,0.1,north\nnew,yyyyy,,north\nnew,,-5,north\n");
}

TEST_F(alter_test, precision_and_description_stay) {
  const std::string description(64, 'd');
  in_both([&](const names& options) {
    names all = options;
    all.insert(all.end(), {"--description", description});
    make(all);
    const auto before = schema();
    (void)altered({"--drop", "B"});
    EXPECT_EQ(schema()["precision"], before["precision"]);
    const auto info = nlohmann::json::parse(run_quietly({"info", "t.ovt", "--json"}));
    EXPECT_EQ(info["description"], description);
  });
}

TEST_F(alter_test, a_blank_description_stays_blank) {
  in_both([&](const names& options) {
    names all = options;
    all.insert(all.end(), {"--description", " "});
    make(all);
    (void)altered({"--drop", "B"});
    EXPECT_EQ(nlohmann::json::parse(run_quietly({"info", "t.ovt", "--json"}))["description"], "");
  });
}

TEST_F(alter_test, a_table_without_rows_is_altered_too) {
  round_trip("A,B\n");
  EXPECT_EQ(altered({"--drop", "A", "--add", "C"}), "B,C\n");
}

TEST_F(alter_test, many_rows_stay) {
  std::string csv = "A,B\n";
  std::string expected = "B,A\n";
  for (int i = 1; i <= 5000; ++i) {
    csv += std::to_string(i) + ",t" + std::to_string(i) + "\n";
    expected += "t" + std::to_string(i) + "," + std::to_string(i) + "\n";
  }
  in_both([&](const names& options) {
    round_trip(csv, options);
    EXPECT_EQ(altered({"--order", "B"}), expected);
  });
}

TEST_F(alter_test, a_table_without_columns_says_so) {
  round_trip("A\n");
  run_quietly({"alter", "t.ovt", "--drop", "A"});
  expect_unchanged({"sort", "t.ovt", "--by", "A"}, "t.ovt has no column A; it has no columns");
  expect_unchanged({"alter", "t.ovt", "--drop", "A"}, "t.ovt has no column A; it has no columns");
}

TEST_F(alter_test, what_is_not_possible_changes_nothing) {
  make();
  const std::string before = read("t.ovt");
  expect_wrong_usage({"alter", "t.ovt", "--drop", ""}, "the name of a column is empty");
  expect_wrong_usage({"alter", "t.ovt", "--order", ""}, "the name of a column is empty");
  EXPECT_TRUE(read("t.ovt") == before);
  expect_unchanged({"alter", "t.ovt", "--drop", "D"}, "t.ovt has no column D; its columns are A, B, C, ZONE");
  expect_unchanged({"alter", "t.ovt", "--order", "D"},
                   "t.ovt has no column D; its columns are A, B, C, ZONE");
  expect_unchanged({"alter", "t.ovt", "--order", "A,A"}, "t.ovt: --order A: the column is named twice");
  expect_unchanged({"alter", "t.ovt", "--drop", "A", "--order", "A"},
                   "t.ovt: --order A: the column is dropped");
  expect_unchanged({"alter", "t.ovt", "--drop", "A,B,C"},
                   "t.ovt: no column with values in the rows would be left");
  expect_unchanged({"alter", "t.ovt", "--add", "A"}, "t.ovt: --add A: there is a column of that name");
  expect_unchanged({"alter", "t.ovt", "--add", "N", "--add", "N:4"},
                   "t.ovt: --add N: there is a column of that name");
  expect_unchanged({"alter", "t.ovt", "--add", "ABCDEFGHI"},
                   "t.ovt: --add ABCDEFGHI: the name is longer than 8 characters");
  expect_unchanged({"alter", "t.ovt", "--add", "N=x"},
                   "t.ovt, column N: x is not a number; the column holds numbers");
  expect_unchanged({"alter", "t.ovt", "--add", "N:6=1234567"},
                   "t.ovt, column N: the text has 7 characters, more than the 6 of the column");
  expect_unchanged(
      {"alter", "t.ovt", "--add", "N:1024"},
      "t.ovt: the table would need 262 words; a double-precision one holds 256 (a number takes one, a "
      "text one for every 4 characters)");
}

TEST_F(alter_test, wrong_usage_is_told) {
  make();
  expect_wrong_usage({"alter", "t.ovt"}, "--drop, --add or --order is required");
  for (const char* wrong : {"=1", ":4", "N:0", "N:x", "N:1025", ""}) {
    expect_wrong_usage(
        {"alter", "t.ovt", "--add", wrong},
        std::string("--add ") + wrong + ": expected NAME[:WIDTH][=DEFAULT], a width of 1 to 1024");
  }
}

}  // namespace
