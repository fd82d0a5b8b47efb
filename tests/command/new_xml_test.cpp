// New tables from schemas in XML.
#include <nlohmann/json.hpp>

#include "command/command_test.h"

namespace {

using names = std::vector<std::string>;

class new_xml_test : public ovtest::command_test {
 protected:
  /// A definition around these lines of fields.
  static std::string xml(const std::string& fields, const std::string& precision = "extended",
                         const std::string& description = "d") {
    return "<?xml version=\"1.0\" ?>\r\n<OvDefinition precision=\"" + precision + "\" desc=\"" + description +
           "\">\r\n\t<OvFields>\r\n" + fields + "\t</OvFields>\r\n</OvDefinition>\r\n";
  }

  static std::string number(const std::string& name, const std::string& value = "0") {
    return "\t\t<OvField name=\"" + name + "\" type=\"numeric\" default=\"" + value + "\"/>\r\n";
  }

  static std::string text(const std::string& name, const std::string& length, const std::string& value) {
    return "\t\t<OvField name=\"" + name + "\" type=\"alphanumeric\" length=\"" + length + "\" default=\"" +
           value + "\"/>\r\n";
  }

  std::string listing() const { return run_quietly({"schema", "t.ovt"}); }
  nlohmann::json info() const { return nlohmann::json::parse(run_quietly({"info", "t.ovt", "--json"})); }

  /// Expects `new` to fail with this line and to leave nothing behind.
  void expect_no_table(const std::string& content, const std::string& line) const {
    write("s.xml", content);
    expect_failure({"new", "t.ovt", "--xml", "s.xml"}, line);
    EXPECT_EQ(files(), names{"s.xml"});
  }

  /// Expects a table of A and what else can be taken over, and a warning of these fields.
  void expect_not_taken(const std::string& fields, const std::string& missing) const {
    write("s.xml", xml(number("A") + fields));
    const ovtest::process_result result = run({"new", "t.ovt", "--xml", "s.xml"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error,
              "ovfile: warning: s.xml: not taken over: " + missing +
                  " (a field is <OvField and a blank, on a line of its own, with values in double "
                  "quotes, a name of at most 8 characters, a type numeric or alphanumeric, and in "
                  "the latter case a length of 0 to 1048576)\n");
  }

  /// A text as UTF-16 with its byte order mark; ASCII alone.
  static std::string utf16(const std::string& ascii, bool big_endian) {
    std::string bytes = big_endian ? "\xFE\xFF" : "\xFF\xFE";
    for (const char c : ascii) bytes += big_endian ? std::string{'\0', c} : std::string{c, '\0'};
    return bytes;
  }
};

constexpr const char* three_fields =
    "   #  column  type    width  kept      default\n"
    "   1  A       number         stored    0\n"
    "   2  T       text        8  stored    north\n"
    "   3  NX      number         implicit  12.5\n";

const std::string implicit_number =
    "\t\t<OvField name=\"NX\" type=\"numeric\" default=\"12.5\" implicit=\"true\"/>\r\n";

TEST_F(new_xml_test, makes_the_table_that_the_xml_tells) {
  write("s.xml", xml(number("A") + text("T", "8", "north") + implicit_number, "single", "from a schema"));
  run_quietly({"new", "t.ovt", "--xml", "s.xml"});
  EXPECT_EQ(listing(), three_fields);
  EXPECT_EQ(info()["precision"], "single");
  EXPECT_EQ(info()["description"], "from a schema");
  run_quietly({"new", "t.ovt", "--xml", "s.xml", "--description", "from me"});
  EXPECT_EQ(info()["description"], "from me");
}

TEST_F(new_xml_test, a_schema_comes_back_from_its_xml) {
  write("in.csv", "BHID,FROM\nB1,1\n");
  run_quietly({"import", "in.csv", "old.ovt", "--implicit", "ZONE=north", "--description", "d"});
  const std::string schema = run_quietly({"schema", "old.ovt", "--xml"});
  run_quietly({"new", "t.ovt", "--xml", "-"}, schema);
  EXPECT_EQ(listing(), run_quietly({"schema", "old.ovt"}));
  EXPECT_EQ(run_quietly({"schema", "t.ovt", "--xml"}), schema);
}

TEST_F(new_xml_test, special_values_are_defaults) {
  write("s.xml", xml(number("A", "-") + number("B", "+") + number("C", "TR")));
  run_quietly({"new", "t.ovt", "--xml", "s.xml"});
  EXPECT_EQ(listing(),
            "   #  column  type    width  kept      default\n"
            "   1  A       number         stored    absent\n"
            "   2  B       number         stored    1e+30\n"
            "   3  C       number         stored    1e-30\n");
}

TEST_F(new_xml_test, a_text_without_a_width_takes_one_word) {
  write("s.xml", xml(number("A") + text("T", "0", "x")));
  run_quietly({"new", "t.ovt", "--xml", "s.xml"});
  EXPECT_EQ(listing(),
            "   #  column  type    width  kept      default\n"
            "   1  A       number         stored    0\n"
            "   2  T       text        4  stored\n");
  std::string fields = text("T", "0", "x");
  for (int i = 1; i <= 64; ++i) fields += number("C" + std::to_string(i));
  expect_failure({"new", "t.ovt", "--xml", "-"},
                 "standard input: the table would need 65 words; a single-precision one holds 64 (a number "
                 "takes one, a text "
                 "one for every 4 characters)",
                 xml(fields, "single"));
}

TEST_F(new_xml_test, encodings_are_told_apart) {
  const std::string plain = xml(number("A") + text("T", "8", "north") + implicit_number);
  for (const std::string& content :
       {plain, "\xEF\xBB\xBF" + plain, utf16(plain, false), utf16(plain, true)}) {
    run_quietly({"new", "t.ovt", "--xml", "-"}, content);
    EXPECT_EQ(listing(), three_fields);
  }
  for (const std::string& shown : {std::string("\xC3\xA4"), std::string("\xE4")}) {
    run_quietly({"new", "t.ovt", "--xml", "-"}, xml(text("T", "8", shown)));
    EXPECT_EQ(info()["fields"][0]["default"], "\xC3\xA4");
  }
}

TEST_F(new_xml_test, fields_that_are_not_taken_over_are_told) {
  expect_not_taken(number("LONGFIELDNAME") + "<OvField name=\"F\" type=\"date\" default=\"1\"/>\n" +
                       "<OvField name=\"B\" type=\"numeric\" default=\"1\"/>" + number("C"),
                   "LONGFIELDNAME, F, C");
  EXPECT_EQ(listing(),
            "   #  column  type    width  kept      default\n"
            "   1  A       number         stored    0\n"
            "   2  B       number         stored    1\n");
}

TEST_F(new_xml_test, lengths_that_no_text_has_are_told) {
  expect_not_taken(text("D", "-9", "x") + text("E", "99999999", "x") + text("F", "2000000", "x") +
                       "<OvField name=\"G\" type=\"alphanumeric\" default=\"x\"/>\n",
                   "D, E, F, G");
}

TEST_F(new_xml_test, every_element_of_a_field_is_looked_at) {
  expect_not_taken(
      "\t\t<OvField\tname=\"B\" type=\"numeric\" default=\"0\"/>\n<OvField\n<OvFields2/>\n"
      "<OvField/>\n<OvField>name=\"C\"</OvField>\n",
      "B, C, 2 without a name");
}

TEST_F(new_xml_test, fields_without_names_are_counted) {
  std::string fields;
  for (int i = 0; i < 8; ++i) fields += "<OvField name=B type=numeric default=0/>\n";
  expect_not_taken(fields, "8 without a name");
  expect_not_taken("<OvField name='B' type='numeric'/>\n" + number("LONGFIELDNAME"),
                   "LONGFIELDNAME, 1 without a name");
}

TEST_F(new_xml_test, blanks_around_the_equals_sign_do_not_matter) {
  write("s.xml", xml("<OvField name = \"A\" type = \"numeric\" default = \"1\"/>\n"));
  run_quietly({"new", "t.ovt", "--xml", "s.xml"});
  EXPECT_EQ(listing(),
            "   #  column  type    width  kept      default\n"
            "   1  A       number         stored    1\n");
}

TEST_F(new_xml_test, what_a_table_cannot_have_is_told_by_field) {
  expect_no_table(xml(number("A") + number("B C")),
                  "s.xml, field B C: a name may not hold blanks, control characters or any of ,!:*&=()?");
  expect_no_table(xml(number("A") + number("B") + number("A")), "s.xml, field A: the name is there twice");
  expect_no_table(xml(number("A") + "<OvField type=\"numeric\" default=\"0\"/>\n"),
                  "s.xml, field 2: the name is empty");
  expect_no_table(xml(number("A", "1e39"), "single"),
                  "s.xml, field A: the default is beyond the range of single precision");
  expect_no_table(
      xml(number("A") + text("T", "256", "x"), "single"),
      "s.xml: the table would need 65 words; a single-precision one holds 64 (a number takes one, a text "
      "one for every 4 characters)");
  expect_no_table(xml(number("A"), "single", "LINKx ."),
                  "s.xml, desc: a description that begins with LINK would make the table a link to another "
                  "file");
}

TEST_F(new_xml_test, what_is_no_schema_is_refused) {
  expect_no_table("", "s.xml has no fields");
  expect_no_table("A,B\n1,2\n", "s.xml has no fields");
  expect_no_table(xml(""), "s.xml has no fields");
  expect_no_table(std::string("<\0O\0", 4), "s.xml, line 1: a NUL character; this is no XML");
  expect_no_table("\xFF\xFE<", "s.xml ends within a character of UTF-16");
  expect_no_table(xml(number("A") + text("T", "8", "\xCE\xB1")),
                  "s.xml, line 5: the character U+03B1 is not in Windows-1252, in which tables keep text");
  expect_no_table(std::string((16 << 20) + 1, ' '), "s.xml is too large to be a schema");
}

TEST_F(new_xml_test, a_file_that_is_not_there_is_named) {
  expect_failure({"new", "t.ovt", "--xml", "none.xml"}, "cannot open none.xml: No such file or directory");
  expect_failure({"new", "t.ovt", "--xml", "-"}, "standard input has no fields");
  EXPECT_EQ(files(), names{});
}

TEST_F(new_xml_test, the_xml_is_not_replaced_by_its_table) {
  write("s.xml", xml(number("A")));
  expect_wrong_usage({"new", "./s.xml", "--xml", "s.xml"}, "the XML and the table are one file: s.xml");
  EXPECT_EQ(read("s.xml"), xml(number("A")));
}

}  // namespace
