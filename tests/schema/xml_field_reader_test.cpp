// The fields of the XML form as they are read, with the habits of the scanner.
#include "schema/xml_reading.h"

namespace ovtest {
namespace {

class xml_field_reader : public xml_reader {};

TEST_F(xml_field_reader, drops_names_beyond_8_characters) {
  read_field(
      "<OvField name=\"LONGFIELDNAME\" type=\"numeric\" default=\"1\"/>\n"
      "<OvField name=\"NINECHARS\" type=\"numeric\" default=\"1\"/>\n"
      "<OvField name=\"EIGHTCHR\" type=\"numeric\" default=\"1\"/>");
  ASSERT_EQ(1, count());
  EXPECT_EQ("EIGHTCHR", name(1));
}

TEST_F(xml_field_reader, runs_an_empty_value_on_to_the_next_quote) {
  read_field("<OvField name=\"A\" type=\"alphanumeric\" length=\"16\" default=\"\" implicit=\"true\"/>");
  ASSERT_EQ(1, count());
  EXPECT_EQ("\" implicit=     ", text_default(1));
  EXPECT_EQ(-1, offset(1)) << "the attribute itself is read all the same";
  read_field("<OvField name=\"A\" type=\"alphanumeric\" length=\"8\" default=\"\"/>");
  EXPECT_EQ("        ", text_default(1)) << "no next quote: empty";
}

TEST_F(xml_field_reader, takes_an_attribute_from_the_first_place_of_its_name) {
  read_field("<OvField type=\"numeric\" default=\"5\" desc=\"name\" name=\"A\"/>");
  ASSERT_EQ(1, count());
  EXPECT_EQ(" name=", name(1)) << "what stands between the quotes behind the first \"name\"";
  EXPECT_EQ(5.0, number_default(1));
}

TEST_F(xml_field_reader, finds_the_name_of_an_attribute_in_the_name_of_a_field) {
  read_field("<OvField name=\"length\" type=\"alphanumeric\" length=\"8\" default=\"x\"/>");
  ASSERT_EQ(1, count());
  EXPECT_EQ("length", name(1));
  EXPECT_EQ(0, size(1)) << "the length is \" type=\"";
}

TEST_F(xml_field_reader, needs_a_known_type) {
  read_field(
      "<OvField name=\"A\" type=\"number\" default=\"1\"/>\n"
      "<OvField name=\"B\" default=\"1\"/>\n"
      "<OvField name=\"C\" type=\"Numeric\" default=\"1\"/>\n"
      "<OvField name=\"D\" type=numeric default=\"1\"/>\n");
  EXPECT_EQ(0, count());
}

TEST_F(xml_field_reader, needs_the_length_of_a_text) {
  read_field(
      "<OvField name=\"A\" type=\"alphanumeric\" default=\"x\"/>\n"
      "<OvField name=\"B\" type=\"alphanumeric\" length=\"\"\n");
  EXPECT_EQ(0, count());
}

TEST_F(xml_field_reader, rounds_the_length_up_to_whole_words) {
  read_field("<OvField name=\"A\" type=\"alphanumeric\" length=\" 5 metres\" default=\"abcdefghij\"/>");
  ASSERT_EQ(1, count());
  EXPECT_EQ(8, characters(1));
  EXPECT_EQ(16, size(1));
  EXPECT_EQ("abcdefgh", text_default(1));
}

TEST_F(xml_field_reader, drops_texts_of_impossible_lengths) {
  read_field(
      "<OvField name=\"A\" type=\"alphanumeric\" length=\"-8\" default=\"x\"/>\n"
      "<OvField name=\"B\" type=\"alphanumeric\" length=\"99999999999999999999\" default=\"x\"/>\n"
      "<OvField name=\"C\" type=\"alphanumeric\" length=\"none\" default=\"x\"/>");
  ASSERT_EQ(1, count());
  EXPECT_EQ("C", name(1));
  EXPECT_EQ(0, size(1));
}

TEST_F(xml_field_reader, reads_a_field_without_a_name_or_a_default) {
  read_field("<OvField type=\"numeric\"/>");
  ASSERT_EQ(1, count());
  EXPECT_EQ("", name(1));
  EXPECT_EQ(0.0, number_default(1));
}

TEST_F(xml_field_reader, takes_true_alone_for_implicit) {
  read_field(
      "<OvField name=\"A\" type=\"numeric\" default=\"1\" implicit=\"false\"/>\n"
      "<OvField name=\"B\" type=\"numeric\" default=\"1\" implicit=\"TRUE\"/>\n"
      "<OvField name=\"C\" type=\"numeric\" default=\"1\" implicit=\"true\"/>");
  ASSERT_EQ(3, count());
  EXPECT_EQ(0, offset(1));
  EXPECT_EQ(0, offset(2));
  EXPECT_EQ(-1, offset(3));
}

TEST_F(xml_field_reader, reads_special_values_in_double_precision) {
  EXPECT_EQ(1.0e30, number("+"));
  EXPECT_EQ(-1.0e30, number("-"));
  EXPECT_EQ(1.0e-30, number("TR"));
}

TEST_F(xml_field_reader, reads_special_values_in_single_precision) {
  read(
      "<OvDefinition precision=\"single\">\n<OvField name=\"A\" type=\"numeric\" default=\"+\"/>\n"
      "<OvField name=\"B\" type=\"numeric\" default=\"-\"/>\n"
      "<OvField name=\"C\" type=\"numeric\" default=\"TR\"/>\n");
  ASSERT_EQ(3, count());
  EXPECT_EQ(1.0000000150474662e30, number_default(1));
  EXPECT_EQ(-1.0000000150474662e30, number_default(2));
  EXPECT_EQ(1.0000000031710769e-30, number_default(3));
}

TEST_F(xml_field_reader, reads_the_number_that_a_default_begins_with) {
  EXPECT_EQ(12.5, number("12.5 g/t"));
  EXPECT_EQ(-3.0e7, number(" \t-3.e7x"));
  EXPECT_EQ(0.0, number("abc"));
  EXPECT_EQ(0.0, number("tr"));
  EXPECT_EQ(0.5, number("+.5"));
  EXPECT_EQ(0.0, number(",5")) << "no locale's comma";
}

TEST_F(xml_field_reader, drops_the_257th_field) {
  std::string text = "<OvFields>\n";
  for (int i = 0; i < 300; ++i) text += "<OvField name=\"N" + std::to_string(i) + "\" type=\"numeric\"/>\n";
  read(text);
  EXPECT_EQ(256, count());
  EXPECT_EQ("N255", name(256));
}

}  // namespace
}  // namespace ovtest
