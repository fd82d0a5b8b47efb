#include "command/command_test.h"

#include <nlohmann/json.hpp>

namespace {

using info_test = ovtest::command_test;

TEST_F(info_test, tells_a_table_in_words) {
  round_trip("BHID,FROM,CU\nB1,0,1\nB2,5,\n", {"--description", "Two assays", "--implicit", "ZONE=north"});
  EXPECT_EQ(run_quietly({"info", "t.ovt"}),
            "file         t.ovt\n"
            "kind         table\n"
            "precision    double (8-byte words)\n"
            "byte order   0 (little-endian)\n"
            "description  Two assays\n"
            "rows         2\n"
            "record       3 words, 169 in a page\n"
            "pages        2, 1 of them header\n"
            "file size    8192 bytes\n"
            "columns      4\n"
            "\n"
            "   #  column  type    width  kept      default\n"
            "   1  BHID    text        4  stored\n"
            "   2  FROM    number         stored    absent\n"
            "   3  CU      number         stored    absent\n"
            "   4  ZONE    text        8  implicit  north\n");
}

TEST_F(info_test, tells_a_table_in_json) {
  round_trip("BHID,CU\n\"B1\",1\n", {"--single", "--description", "say \"hi\" \\", "--implicit", "NX=0.1"});
  EXPECT_EQ(nlohmann::json::parse(run_quietly({"info", "--json", "t.ovt"})), nlohmann::json::parse(R"({
    "file": "t.ovt", "link_target": null, "kind": "table", "type_hint": 1073741824, "precision": "single", "byte_order": 0,
    "description": "say \"hi\" \\", "rows": 1, "record_words": 2, "records_per_page": 254, "pages": 2,
    "header_pages": 1, "file_size": 4096,
    "fields": [
      {"name": "BHID", "type": "text", "width": 4, "implicit": false, "default": ""},
      {"name": "CU", "type": "number", "width": 4, "implicit": false, "default": null},
      {"name": "NX", "type": "number", "width": 4, "implicit": true, "default": 0.1}]})"));
}

TEST_F(info_test, tells_the_kind) {
  const auto kind_of = [&](const std::string& header) {
    round_trip(header + "\n");
    const auto info = nlohmann::json::parse(run_quietly({"info", "--json", "t.ovt"}));
    return info["kind"].get<std::string>() + " " + std::to_string(info["type_hint"].get<int>() - 0x40000000);
  };
  EXPECT_EQ(kind_of("BHID,FROM,TO,LENGTH,X,Y,Z,A0,B0,CU"), "drillhole 4");
  EXPECT_EQ(kind_of("BHID,TO,FROM,CU"), "assays 4096");
  EXPECT_EQ(kind_of("IJK,XC,YC,ZC,XINC,YINC,ZINC,XMORIG,YMORIG,ZMORIG,NX,NY,NZ"), "block model 32");
  EXPECT_EQ(kind_of("XINC,YINC,ZINC,XMORIG,YMORIG,ZMORIG,NX,NY,NZ"), "kind 0x4000 16384");
  EXPECT_EQ(kind_of("bhid,from,to"), "table 0");
}

TEST_F(info_test, follows_a_link_and_names_its_target) {
  round_trip("A\n1\n");
  std::string link = read("t.ovt");
  // The description's first word of a double-precision header is word 4; 4 characters to a word.
  const std::string text = "LINKt.ovt .";
  for (std::size_t i = 0; i < 64; ++i) link[32 + i / 4 * 8 + i % 4] = i < text.size() ? text[i] : ' ';
  write("link.ovt", link);
  const auto info = nlohmann::json::parse(run_quietly({"info", "--json", "link.ovt"}));
  EXPECT_EQ(info["file"], "link.ovt");
  EXPECT_EQ(std::filesystem::path(info["link_target"].get<std::string>()).filename(), "t.ovt");
  EXPECT_EQ(info["rows"], 1);
}

TEST_F(info_test, failures_name_the_file) {
  expect_failure({"info", "none.ovt"}, "none.ovt: File does not exist");
  write("empty.ovt", "");
  EXPECT_EQ(run({"info", "empty.ovt"}).status, 1);
}

}  // namespace
