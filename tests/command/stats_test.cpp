#include <nlohmann/json.hpp>

#include "command/command_test.h"

namespace {

using nlohmann::json;

class stats_test : public ovtest::command_test {
 protected:
  json stats(std::vector<std::string> options = {}) const {
    options.insert(options.begin(), {"stats", "t.ovt", "--json"});
    return json::parse(run_quietly(std::move(options)));
  }
};

TEST_F(stats_test, every_column_has_a_line) {
  round_trip(
      "BHID,FROM,AU,ROCK\n"
      "H1,0,1,ORE\nH1,5,2,ORE\nH1,10,3,ORE\nH2,0,4,WASTE\nH2,5,,\n");
  EXPECT_EQ(run_quietly({"stats", "t.ovt"}),
            "5 of 5 rows\n"
            "\n"
            "number  values  absent  trace  special  min  max  mean    deviation  histogram\n"
            "FROM         5       0      0        0    0   10     4  4.183300133  "
            "█         █        ▄\n"
            "AU           4       1      0        0    1    4   2.5  1.290994449  "
            "█     █      █     █\n"
            "\n"
            "text  values  blank  distinct  most frequent\n"
            "BHID       5      0         2  H1 3, H2 2\n"
            "ROCK       4      1         2  ORE 3, WASTE 1\n");
}

TEST_F(stats_test, rows_and_columns_can_be_chosen) {
  round_trip("A,B,C\n1,x,5\n2,y,6\n3,x,7\n");
  EXPECT_EQ(run_quietly({"stats", "t.ovt", "--columns", "B", "--where", "A >= 2"}),
            "2 of 3 rows\n"
            "\n"
            "text  values  blank  distinct  most frequent\n"
            "B          2      0         2  x 1, y 1\n");
  EXPECT_EQ(stats({"--columns", "C", "--where", "A >= 2"})["columns"][0]["mean"], 6.5);
  expect_failure({"stats", "t.ovt", "--columns", "D"}, "t.ovt has no column D; its columns are A, B, C");
  expect_failure({"stats", "t.ovt", "--where", "D > 1"}, "t.ovt has no column D; its columns are A, B, C");
}

TEST_F(stats_test, special_numbers_count_by_themselves) {
  for (const std::vector<std::string>& options : {std::vector<std::string>{}, {"--single"}}) {
    round_trip("A\n-1e30\n1e-30\n1e30\n-2e30\n5e35\n0.1\n0.3\n\"\"\n", options);
    const json column = stats()["columns"][0];
    EXPECT_EQ(column["values"], 2);
    EXPECT_EQ(column["absent"], 2) << "-1e30 is what absent means, and so is an empty cell";
    EXPECT_EQ(column["trace"], 1);
    EXPECT_EQ(column["special"], 3);
    EXPECT_EQ(column["min"], 0.1);
    EXPECT_EQ(column["max"], 0.3);
    EXPECT_DOUBLE_EQ(column["mean"].get<double>(), 0.2);
  }
}

TEST_F(stats_test, as_json) {
  round_trip("A,B\n1,x\n2,\n3,x\n4,y\n");
  EXPECT_EQ(stats(), json::parse(R"({
    "file": "t.ovt", "rows": 4, "rows_in_table": 4, "columns": [
      {"name": "A", "type": "number", "values": 4, "absent": 0, "trace": 0, "special": 0, "min": 1, "max": 4,
       "mean": 2.5, "deviation": 1.2909944487358056,
       "histogram": [1,0,0,0,0,0,1,0,0,0,0,0,0,1,0,0,0,0,0,1]},
      {"name": "B", "type": "text", "values": 3, "blank": 1, "distinct": 2, "exact": true,
       "most_frequent": [{"text": "x", "rows": 2}, {"text": "y", "rows": 1}]}]})"));
}

TEST_F(stats_test, columns_without_values_have_no_figures) {
  round_trip("A,B\n\"\",\n");
  EXPECT_EQ(run_quietly({"stats", "t.ovt", "--columns", "A"}),
            "1 of 1 row\n"
            "\n"
            "number  values  absent  trace  special  min  max  mean  deviation  histogram\n"
            "A            0       1      0        0\n");
  EXPECT_EQ(stats({"--columns", "A"})["columns"][0],
            json::parse(R"({"name": "A", "type": "number", "values": 0, "absent": 1, "trace": 0, "special": 0,
                            "min": null, "max": null, "mean": null, "deviation": null, "histogram": []})"));
  round_trip("A,B\n7,x\n7,x\n");
  EXPECT_EQ(stats()["columns"][0]["deviation"], 0);
  EXPECT_EQ(run_quietly({"stats", "t.ovt", "--columns", "A"}),
            "2 of 2 rows\n"
            "\n"
            "number  values  absent  trace  special  min  max  mean  deviation  histogram\n"
            "A            2       0      0        0    7    7     7          0  █\n");
}

TEST_F(stats_test, a_table_without_rows_has_figures_too) {
  round_trip("A\n");
  EXPECT_EQ(stats()["rows"], 0);
  EXPECT_EQ(stats()["columns"][0]["values"], 0);
}

TEST_F(stats_test, the_five_most_frequent_texts_are_shown_short) {
  round_trip(
      "B\n\"a text that is longer than anybody wants\"\n\"a text that is longer than anybody wants\"\n"
      "g\nf\n\"e\x1B[0m\"\nd\nc\n");
  EXPECT_EQ(run_quietly({"stats", "t.ovt"}),
            "7 of 7 rows\n"
            "\n"
            "text  values  blank  distinct  most frequent\n"
            "B          7      0         6  a text that is longer th… 2, c 1, d 1, e.[0m 1, f 1\n");
}

TEST_F(stats_test, a_text_with_a_comma_is_quoted) {
  round_trip("B\n\"a, \"\"b\"\"\"\nc\n");
  EXPECT_EQ(run_quietly({"stats", "t.ovt"}),
            "2 of 2 rows\n"
            "\n"
            "text  values  blank  distinct  most frequent\n"
            "B          2      0         2  \"a, \"\"b\"\"\" 1, c 1\n");
}

}  // namespace
