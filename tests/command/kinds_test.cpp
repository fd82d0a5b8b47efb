#include <nlohmann/json.hpp>

#include "command/command_test.h"
#include "command/kind_words.h"

namespace {

using kinds_test = ovtest::command_test;

std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = text.find('\n', begin);
    lines.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  return lines;
}

TEST_F(kinds_test, lists_the_kinds_in_the_order_of_the_search) {
  const std::vector<std::string> lines = lines_of(run_quietly({"kinds"}));
  ASSERT_EQ(lines.size(), 35u);
  EXPECT_EQ(lines[0], "   #  kind                                   value       columns");
  EXPECT_EQ(lines[1], "   1  strings                                0x2         XP YP ZP PTN PVALUE");
  EXPECT_EQ(lines[5],
            "   5  kind 0x4000                            0x4000      XINC YINC ZINC XMORIG YMORIG ZMORIG NX "
            "NY NZ");
  EXPECT_EQ(lines[9], "   9  catalogue                              0x3000000   FILENAM");
  EXPECT_TRUE(
      lines[30].starts_with("  30  advanced estimation search parameters  0x1A000000  SREFNUM SDIST1 "))
      << lines[30];
  EXPECT_EQ(lines[34],
            "  34  volume report                          0x1E000000  VOLUME LOWAREA UPAREA TOTAREA MINDIP "
            "MAXDIP NUMTRI");
}

TEST_F(kinds_test, a_kind_that_is_never_found_is_marked) {
  const std::vector<std::string> lines = lines_of(run_quietly({"kinds"}));
  ASSERT_EQ(lines.size(), 35u);
  EXPECT_EQ(lines[13],
            "  13  schedule data                          0x5000000   \"PVALUE \" VOLUME TONNES LENGTH ZMIN "
            "ZMAX GRADIENT XAREA  (never found: no name ends with a blank)");
  for (std::size_t row = 1; row <= 34; ++row) {
    EXPECT_EQ(lines[row].find("never") != std::string::npos, row == 13) << lines[row];
  }
}

TEST_F(kinds_test, lists_the_kinds_in_json) {
  const auto kinds = nlohmann::json::parse(run_quietly({"kinds", "--json"}));
  ASSERT_EQ(kinds.size(), 34u);
  EXPECT_EQ(kinds[2], nlohmann::json::parse(R"({"row": 3, "kind": "drillhole", "name": "ovDrillHole",
    "value": 4, "can_match": true,
    "fields": ["BHID", "FROM", "TO", "LENGTH", "X", "Y", "Z", "A0", "B0"]})"));
  EXPECT_EQ(kinds[12]["can_match"], false);
  EXPECT_EQ(kinds[12]["fields"][0], "PVALUE ");
  EXPECT_EQ(kinds[22], nlohmann::json::parse(R"({"row": 23, "kind": "kind 0x10000", "name": null,
    "value": 65536, "can_match": true,
    "fields": ["XP", "YP", "ZP", "AZI", "DIP", "ROLL", "RAD1", "RAD2", "RAD3"]})"));
  EXPECT_EQ(kinds[33]["value"], 0x1E000000);
}

TEST_F(kinds_test, a_kind_with_a_blank_in_a_name_is_not_found) {
  round_trip("PVALUE,VOLUME,TONNES,LENGTH,ZMIN,ZMAX,GRADIENT,XAREA\n1,2,3,4,5,6,7,8\n");
  EXPECT_EQ(nlohmann::json::parse(run_quietly({"info", "t.ovt", "--json"}))["kind"], "table");
}

TEST(kind_words, a_hint_is_told_in_words) {
  const auto hint = [](LONG value) { return static_cast<OvFileType>(value); };
  EXPECT_EQ(command::kind_words(hint(0x40000000)), "table");
  EXPECT_EQ(command::kind_words(ovNothing), "table");
  EXPECT_EQ(command::kind_words(hint(0x40000004)), "drillhole");
  EXPECT_EQ(command::kind_words(ovDrillHole), "drillhole");
  EXPECT_EQ(command::kind_words(hint(0x40000020)), "block model");
  EXPECT_EQ(command::kind_words(hint(0x40000040)), "wireframe points");
  EXPECT_EQ(command::kind_words(hint(0x4D000000)), "drillhole survey");
  EXPECT_EQ(command::kind_words(hint(0x40004000)), "kind 0x4000");
  EXPECT_EQ(command::kind_words(hint(0x40000003)), "kind 0x3");
}

}  // namespace
