#include <nlohmann/json.hpp>

#include "command/command_test.h"

namespace {

class schema_test : public ovtest::command_test {
 protected:
  /// A table of these stored columns, without rows.
  void make(const std::string& header, std::vector<std::string> options = {}) const {
    write("in.csv", header + "\n");
    options.insert(options.begin(), {"import", "in.csv", "t.ovt", "--description", "d"});
    run_quietly(std::move(options));
  }
};

constexpr const char* lossy =
    "ovfile: warning: t.ovt: the XML form does not hold all of this schema (names of more than 8 characters, "
    "quotes, blank texts, digits of defaults); --json does\n";

TEST_F(schema_test, lists_the_fields) {
  make("BHID,FROM", {"--text", "BHID:8", "--implicit", "ZONE=north", "--implicit", "NX=0.1"});
  EXPECT_EQ(run_quietly({"schema", "t.ovt"}),
            "   #  column  type    width  kept      default\n"
            "   1  BHID    text        8  stored\n"
            "   2  FROM    number         stored    absent\n"
            "   3  ZONE    text        8  implicit  north\n"
            "   4  NX      number         implicit  0.1\n");
}

TEST_F(schema_test, lists_the_fields_in_json) {
  make("BHID,FROM,TO", {"--text", "BHID:8", "--single", "--implicit", "NX=0.1"});
  EXPECT_EQ(nlohmann::json::parse(run_quietly({"schema", "t.ovt", "--json"})), nlohmann::json::parse(R"({
    "file": "t.ovt", "kind": "assays", "precision": "single", "description": "d",
    "fields": [
      {"name": "BHID", "type": "text", "width": 8, "implicit": false, "default": ""},
      {"name": "FROM", "type": "number", "width": 4, "implicit": false, "default": null},
      {"name": "TO", "type": "number", "width": 4, "implicit": false, "default": null},
      {"name": "NX", "type": "number", "width": 4, "implicit": true, "default": 0.1}]})"));
}

TEST_F(schema_test, gives_the_librarys_xml) {
  make("A", {"--implicit", "NX=12.5", "--implicit", "ZONE=north", "--implicit", "TOP=1e30"});
  EXPECT_EQ(run_quietly({"schema", "t.ovt", "--xml"}),
            "<?xml version=\"1.0\" ?>\r\n"
            "<OvDefinition precision=\"extended\" desc=\"d\">\r\n"
            "\t<OvFields>\r\n"
            "\t\t<OvField name=\"A\" type=\"numeric\" default=\"-\"/>\r\n"
            "\t\t<OvField name=\"NX\" type=\"numeric\" default=\"12.5\" implicit=\"true\"/>\r\n"
            "\t\t<OvField name=\"ZONE\" type=\"alphanumeric\" length=\"8\" default=\"north\" "
            "implicit=\"true\"/>\r\n"
            "\t\t<OvField name=\"TOP\" type=\"numeric\" default=\"+\" implicit=\"true\"/>\r\n"
            "\t</OvFields>\r\n"
            "</OvDefinition>\r\n");
}

TEST_F(schema_test, xml_is_utf8) {
  make("A", {"--implicit", "Z=\xC3\xA4\xE2\x82\xAC"});
  EXPECT_NE(run_quietly({"schema", "t.ovt", "--xml"}).find("default=\"\xC3\xA4\xE2\x82\xAC\""),
            std::string::npos);
}

TEST_F(schema_test, what_xml_does_not_hold_is_told) {
  for (const char* implicit : {"N=0.123456789", "Z=a\"b"}) {
    make("A", {"--implicit", implicit});
    const ovtest::process_result result = run({"schema", "t.ovt", "--xml"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error, lossy) << implicit;
    EXPECT_EQ(result.output.substr(0, 5), "<?xml");
  }
}

TEST_F(schema_test, a_schema_too_large_for_xml_says_so) {
  std::string header = "C1";
  for (int i = 2; i <= 60; ++i) header += ",C" + std::to_string(i);
  make(header);
  expect_failure(
      {"schema", "t.ovt", "--xml"},
      "t.ovt: the schema is too large for its XML form, which has at most 2046 characters; use --json");
  EXPECT_EQ(nlohmann::json::parse(run_quietly({"schema", "t.ovt", "--json"}))["fields"].size(), 60u);
}

TEST_F(schema_test, a_description_has_all_its_characters) {
  const std::string description = std::string(58, 'd') + "  wxyz";
  write("in.csv", "A\n");
  run_quietly({"import", "in.csv", "t.ovt", "--description", description});
  EXPECT_EQ(nlohmann::json::parse(run_quietly({"schema", "t.ovt", "--json"}))["description"], description);
  const std::string xml = run_quietly({"schema", "t.ovt", "--xml"});
  EXPECT_NE(xml.find(" desc=\"" + description + "\">"), xml.npos) << xml;
  run_quietly({"new", "u.ovt", "--xml", "-"}, xml);
  EXPECT_EQ(nlohmann::json::parse(run_quietly({"info", "u.ovt", "--json"}))["description"], description);
}

TEST_F(schema_test, one_form_at_a_time) {
  EXPECT_EQ(run({"schema", "t.ovt", "--xml", "--json"}).status, 2);
  expect_failure({"schema", "none.ovt"}, "none.ovt: File does not exist");
}

}  // namespace
