// The XML form as it is read, with the habits of the scanner.
#include "schema/xml_reading.h"

namespace ovtest {
namespace {

TEST_F(xml_reader, reads_what_the_writer_writes) {
  read(
      "<?xml version=\"1.0\" ?>\r\n"
      "<OvDefinition precision=\"single\" desc=\"holes\">\r\n"
      "\t<OvFields>\r\n"
      "\t\t<OvField name=\"BHID\" type=\"alphanumeric\" length=\"8\" default=\"AB\"/>\r\n"
      "\t\t<OvField name=\"AU\" type=\"numeric\" default=\"2.5\"/>\r\n"
      "\t\t<OvField name=\"ROCK\" type=\"alphanumeric\" length=\"4\" default=\"ore\" implicit=\"true\"/>\r\n"
      "\t\t<OvField name=\"DENSITY\" type=\"numeric\" default=\"-2.75\" implicit=\"true\"/>\r\n"
      "\t</OvFields>\r\n"
      "</OvDefinition>\r\n");
  EXPECT_FALSE(is_double());
  EXPECT_EQ("holes", description());
  ASSERT_EQ(4, count());
  EXPECT_EQ("BHID", name(1));
  EXPECT_EQ("AB      ", text_default(1));
  EXPECT_EQ(8, size(1));
  EXPECT_EQ(0, offset(1));
  EXPECT_EQ("AU", name(2));
  EXPECT_EQ(2.5, number_default(2));
  EXPECT_EQ(4, size(2));
  EXPECT_EQ("ore ", text_default(3));
  EXPECT_EQ(-1, offset(3));
  EXPECT_EQ(-2.75, number_default(4));
  EXPECT_EQ(-1, offset(4));
}

TEST_F(xml_reader, replaces_the_whole_schema) {
  ASSERT_EQ(S_OK, schema_->put_Description(bstr("old").get()));
  ASSERT_EQ(S_OK, add_number("OLD"));
  ASSERT_EQ(S_OK, schema_->put_FieldCount(40));
  read("");
  EXPECT_EQ(0, count());
  EXPECT_EQ("", description());
  EXPECT_TRUE(is_double()) << "when the text says nothing else";
  EXPECT_EQ(E_FAIL, set_name(1, "X")) << "no slot is left";
}

TEST_F(xml_reader, takes_no_text_as_an_empty_one) {
  ASSERT_EQ(S_OK, add_number("OLD"));
  EXPECT_EQ(S_OK, schema_->SetSchemaUsingXML(nullptr));
  EXPECT_EQ(0, count());
}

TEST_F(xml_reader, is_refused_by_a_read_only_schema) {
  ASSERT_EQ(S_OK, add_number("OLD"));
  ASSERT_EQ(S_OK, schema_->put_ReadOnly(VARIANT_TRUE));
  EXPECT_EQ(E_FAIL, schema_->SetSchemaUsingXML(bstr("<OvDefinition desc=\"new\">").get()));
  EXPECT_EQ(1, count());
}

TEST_F(xml_reader, makes_an_empty_double_precision_schema_of_anything_else) {
  read("<html><body>nothing</body></html>\n\n\n\r\r\n\"\"\"");
  EXPECT_EQ(0, count());
  EXPECT_TRUE(is_double());
}

TEST_F(xml_reader, needs_no_line_end_at_the_end_and_no_carriage_returns) {
  read(
      "<OvDefinition precision=\"single\" desc=\"d\">\n<OvField name=\"A\" type=\"numeric\" default=\"1\"/>");
  EXPECT_EQ(1, count());
  EXPECT_EQ("d", description());
}

TEST_F(xml_reader, reads_double_precision_without_the_attribute) {
  read("<OvDefinition desc=\"x\">");
  EXPECT_TRUE(is_double());
  EXPECT_EQ("x", description());
}

TEST_F(xml_reader, takes_extended_for_double_wherever_it_stands) {
  read("<OvDefinition precision=\"single\" desc=\"extended area\">");
  EXPECT_TRUE(is_double());
  read("<OvDefinition precision=\"double\" desc=\"\">\n");
  EXPECT_FALSE(is_double()) << "what is not extended is single";
}

TEST_F(xml_reader, closes_and_opens_again) {
  read(
      "<OvDefinition precision=\"single\" desc=\"one\">\n</OvDefinition>\n"
      "<OvField name=\"OUTSIDE\" type=\"numeric\" default=\"1\"/>\n"
      "<OvDefinition precision=\"extended\" desc=\"two\">\n"
      "<OvField name=\"INSIDE\" type=\"numeric\" default=\"+\"/>\n");
  EXPECT_TRUE(is_double());
  EXPECT_EQ("two", description());
  ASSERT_EQ(1, count());
  EXPECT_EQ("INSIDE", name(1));
  EXPECT_EQ(1.0e30, number_default(1));
}

TEST_F(xml_reader, keeps_the_sizes_of_fields_before_a_change_of_precision) {
  read(
      "<OvDefinition>\n<OvField name=\"T\" type=\"alphanumeric\" length=\"8\" "
      "default=\"x\"/>\n</OvDefinition>\n"
      "<OvDefinition precision=\"single\">\n");
  EXPECT_FALSE(is_double());
  ASSERT_EQ(1, count());
  EXPECT_EQ(16, size(1));
  EXPECT_EQ(16, characters(1));
  EXPECT_EQ("x       ", text_default(1));
}

TEST_F(xml_reader, forgets_the_description_of_a_definition_without_one) {
  read("<OvDefinition desc=\"one\">\n</OvDefinition>\n<OvDefinition>\n");
  EXPECT_EQ("", description());
}

TEST_F(xml_reader, reads_fields_in_the_fields_block_alone_too) {
  read(
      "<OvFields>\n<OvField name=\"A\" type=\"numeric\" default=\"1\"/>\n</OvFields>\n"
      "<OvField name=\"B\" type=\"numeric\" default=\"1\"/>\n");
  EXPECT_EQ(1, count());
}

TEST_F(xml_reader, reads_fields_behind_the_closed_fields_block_of_an_open_definition) {
  read("<OvDefinition>\n<OvFields>\n</OvFields>\n<OvField name=\"A\" type=\"numeric\" default=\"1\"/>\n");
  EXPECT_EQ(1, count());
}

TEST_F(xml_reader, reads_one_field_of_a_text_on_one_line) {
  read(
      "<OvDefinition precision=\"single\" desc=\"line\"><OvFields>"
      "<OvField name=\"A\" type=\"numeric\" default=\"1\"/><OvField name=\"B\" type=\"numeric\" "
      "default=\"2\"/>"
      "</OvFields></OvDefinition>");
  EXPECT_FALSE(is_double());
  EXPECT_EQ("line", description());
  ASSERT_EQ(1, count());
  EXPECT_EQ("A", name(1));
  EXPECT_EQ(1.0, number_default(1));
}

TEST_F(xml_reader, cuts_a_description_at_its_quote) {
  ASSERT_EQ(S_OK, schema_->put_Description(bstr("the \"north\" area").get()));
  bstr text;
  ASSERT_EQ(S_OK, schema_->GetSchemaAsXML(text.out()));
  ASSERT_EQ(S_OK, schema_->SetSchemaUsingXML(text.get()));
  EXPECT_EQ("the ", description());
}

TEST_F(xml_reader, reads_the_same_through_the_other_face) {
  const auto common = schema_.query<IZuCommonDataSchema>();
  ASSERT_EQ(S_OK,
            common->SetSchemaUsingXML(bstr("<OvFields>\n<OvField name=\"A\" type=\"numeric\"/>").get()));
  EXPECT_EQ(1, count());
}

/// Would take hours if any step looked through the whole text for each line, or at each word again.
TEST_F(xml_reader, reads_megabytes_in_no_time) {
  const std::string field = "<OvField name=\"A\" type=\"alphanumeric\" length=\"4\" default=\"x\"/>";
  std::string one_line = "<OvDefinition>";
  while (one_line.size() < 4'000'000) one_line += field + "OvDefinitio OvField";
  read(one_line);
  EXPECT_EQ(1, count());
  read("<OvDefinition>\n" + std::string(4'000'000, '"'));
  EXPECT_EQ(0, count());
  read("<OvDefinition>" + std::string(4'000'000, '\n') + field);
  EXPECT_EQ(1, count());
  EXPECT_EQ(0.0, number("." + std::string(4'000'000, '0') + "e"));
}

}  // namespace
}  // namespace ovtest
