// The XML form as it is written, whole texts.
#include <limits>

#include "schema/schema_test.h"

namespace ovtest {
namespace {

class xml_writer : public schema_test {
 protected:
  std::string written() {
    bstr text;
    EXPECT_EQ(S_OK, schema_->GetSchemaAsXML(text.out()));
    return text.utf8();
  }
  HRESULT status() {
    bstr text("before");
    BSTR* out = text.out();
    const HRESULT answer = schema_->GetSchemaAsXML(out);
    EXPECT_EQ(SUCCEEDED(answer), *out != nullptr);
    return answer;
  }
  /// The default of a numeric field of this value.
  std::string number(double value) {
    EXPECT_EQ(S_OK, schema_->SetSchemaUsingXML(nullptr));
    EXPECT_EQ(S_OK, add_number("N", value));
    const std::string text = written();
    const std::size_t begin = text.find("default=\"") + 9;
    return text.substr(begin, text.find('"', begin) - begin);
  }
};

const char single_head[] =
    "<?xml version=\"1.0\" ?>\r\n<OvDefinition precision=\"single\" desc=\"\">\r\n\t<OvFields>\r\n";
const char tail[] = "\t</OvFields>\r\n</OvDefinition>\r\n";

TEST_F(xml_writer, writes_an_empty_single_precision_schema) {
  ASSERT_EQ(S_OK, schema_->put_Description(bstr("abc").get()));
  EXPECT_EQ(
      "<?xml version=\"1.0\" ?>\r\n"
      "<OvDefinition precision=\"single\" desc=\"abc\">\r\n"
      "\t<OvFields>\r\n"
      "\t</OvFields>\r\n"
      "</OvDefinition>\r\n",
      written());
}

TEST_F(xml_writer, writes_numbers_and_texts_explicit_and_implicit) {
  ASSERT_EQ(S_OK, schema_->put_DoublePrecision(VARIANT_TRUE));
  ASSERT_EQ(S_OK, schema_->put_Description(bstr("holes & more").get()));
  ASSERT_EQ(S_OK, add_text("BHID", 6, "AB"));
  ASSERT_EQ(S_OK, add_number("AU", -1.0e30));
  ASSERT_EQ(S_OK, add_text("ROCK", 4, "ore", 1));
  ASSERT_EQ(S_OK, add_number("DENSITY", 2.75, 1));
  EXPECT_EQ(
      "<?xml version=\"1.0\" ?>\r\n"
      "<OvDefinition precision=\"extended\" desc=\"holes & more\">\r\n"
      "\t<OvFields>\r\n"
      "\t\t<OvField name=\"BHID\" type=\"alphanumeric\" length=\"8\" default=\"AB\"/>\r\n"
      "\t\t<OvField name=\"AU\" type=\"numeric\" default=\"-\"/>\r\n"
      "\t\t<OvField name=\"ROCK\" type=\"alphanumeric\" length=\"4\" default=\"ore\" implicit=\"true\"/>\r\n"
      "\t\t<OvField name=\"DENSITY\" type=\"numeric\" default=\"2.75\" implicit=\"true\"/>\r\n"
      "\t</OvFields>\r\n"
      "</OvDefinition>\r\n",
      written());
}

TEST_F(xml_writer, writes_the_precision_of_any_flag_but_0_as_extended) {
  ASSERT_EQ(S_OK, schema_->put_DoublePrecisionFlag(7));
  EXPECT_NE(std::string::npos, written().find("precision=\"extended\""));
}

TEST_F(xml_writer, trims_the_default_of_a_text_on_both_sides) {
  ASSERT_EQ(S_OK, add_text("A", 8, "AB      "));
  ASSERT_EQ(S_OK, add_text("B", 8, "  a b"));
  ASSERT_EQ(S_OK, add_text("C", 8, ""));
  EXPECT_EQ(std::string(single_head) +
                "\t\t<OvField name=\"A\" type=\"alphanumeric\" length=\"8\" default=\"AB\"/>\r\n"
                "\t\t<OvField name=\"B\" type=\"alphanumeric\" length=\"8\" default=\"a b\"/>\r\n"
                "\t\t<OvField name=\"C\" type=\"alphanumeric\" length=\"8\" default=\"\"/>\r\n" +
                tail,
            written());
}

TEST_F(xml_writer, leaves_the_element_of_a_field_without_a_type_open) {
  ASSERT_EQ(S_OK, schema_->put_FieldCount(2));
  ASSERT_EQ(S_OK, set_name(1, "OPEN"));
  ASSERT_EQ(S_OK, schema_->SetFieldOffset(1, -1));
  ASSERT_EQ(S_OK, set_name(2, "LAST"));
  EXPECT_EQ(std::string(single_head) + "\t\t<OvField name=\"OPEN\"\t\t<OvField name=\"LAST\"" + tail,
            written());
  ASSERT_EQ(S_OK, add_number("N", 1));
  EXPECT_EQ(std::string(single_head) +
                "\t\t<OvField name=\"OPEN\"\t\t<OvField name=\"LAST\""
                "\t\t<OvField name=\"N\" type=\"numeric\" default=\"1\"/>\r\n" +
                tail,
            written());
}

TEST_F(xml_writer, escapes_nothing) {
  ASSERT_EQ(S_OK, schema_->put_Description(bstr("a \"b\" <c>").get()));
  ASSERT_EQ(S_OK, add_text("<\"&", 4, "\"x\""));
  EXPECT_EQ(
      "<?xml version=\"1.0\" ?>\r\n<OvDefinition precision=\"single\" desc=\"a \"b\" <c>\">\r\n"
      "\t<OvFields>\r\n"
      "\t\t<OvField name=\"<\"&\" type=\"alphanumeric\" length=\"4\" default=\"\"x\"\"/>\r\n"
      "\t</OvFields>\r\n</OvDefinition>\r\n",
      written());
}

TEST_F(xml_writer, writes_texts_outside_ascii_as_they_are) {
  ASSERT_EQ(S_OK, schema_->put_Description(bstr("Gr\xC3\xBC\xC3\x9F"
                                                "e \xE2\x82\xAC")
                                               .get()));
  ASSERT_EQ(S_OK, add_text("\xC3\x84", 4, "\xC3\xB6"));
  EXPECT_EQ(
      "<?xml version=\"1.0\" ?>\r\n<OvDefinition precision=\"single\" desc=\"Gr\xC3\xBC\xC3\x9F"
      "e \xE2\x82\xAC\">\r\n"
      "\t<OvFields>\r\n"
      "\t\t<OvField name=\"\xC3\x84\" type=\"alphanumeric\" length=\"4\" default=\"\xC3\xB6\"/>\r\n"
      "\t</OvFields>\r\n</OvDefinition>\r\n",
      written());
}

TEST_F(xml_writer, writes_numbers_with_six_decimals_at_most) {
  EXPECT_EQ("0", number(0));
  EXPECT_EQ("12.5", number(12.5));
  EXPECT_EQ("100", number(100));
  EXPECT_EQ("-0.000001", number(-0.000001));
  EXPECT_EQ("0", number(0.0000004));
  EXPECT_EQ("0.333333", number(1.0 / 3));
  EXPECT_EQ("-0", number(-0.0));
  EXPECT_EQ("1.000001", number(1.0000005000001));
  EXPECT_EQ("0.015625", number(0.015625));
  EXPECT_EQ("0.007812", number(0.0078125)) << "a tie goes to the even digit";
  EXPECT_EQ("123456789012345680", number(123456789012345678.0)) << "every digit of the binary value";
}

TEST_F(xml_writer, names_the_special_values) {
  EXPECT_EQ("+", number(1.0e30));
  EXPECT_EQ("-", number(-1.0e30));
  EXPECT_EQ("TR", number(1.0e-30));
  EXPECT_EQ("0", number(1.0000000031710769e-30)) << "the trace of single precision";
}

TEST_F(xml_writer, does_not_know_the_special_values_of_single_precision) {
  variant top;
  ASSERT_EQ(S_OK, schema_->get_SpecialValueTop(top.out()));
  ASSERT_EQ(S_OK, add_number("N", top.number()));
  EXPECT_EQ(std::string(single_head) +
                "\t\t<OvField name=\"N\" type=\"numeric\" default=\"1000000015047466219876688855040\"/>\r\n" +
                tail,
            written());
}

TEST_F(xml_writer, cuts_a_number_behind_63_characters) {
  EXPECT_EQ("100000000000000005366162204393472", number(1e32));
  EXPECT_EQ("99999999999999997168788049560464200849936328366177157906432", number(1e59))
      << "its zeros are cut";
  EXPECT_EQ("100000000000000005250476025520442024870446858110815915491585411", number(1e300));
  EXPECT_EQ("-17976931348623157081452742373170435679807056752584499659891747",
            number(-1.7976931348623157e308));
}

TEST_F(xml_writer, writes_what_is_no_number_as_the_c_library_does) {
  EXPECT_EQ("inf", number(std::numeric_limits<double>::infinity()));
  EXPECT_EQ("-inf", number(-std::numeric_limits<double>::infinity()));
  EXPECT_EQ("nan", number(std::numeric_limits<double>::quiet_NaN()));
  EXPECT_EQ("nan", number(-std::numeric_limits<double>::quiet_NaN()));
}

TEST_F(xml_writer, writes_a_width_that_was_set_apart) {
  ASSERT_EQ(S_OK, add_text("A", 8, "x"));
  ASSERT_EQ(S_OK, schema_->SetFieldSize(1, -3));
  EXPECT_NE(std::string::npos, written().find("length=\"-3\" default=\"x\""));
}

/// 111 characters stand around an empty description.
TEST_F(xml_writer, fails_from_2047_characters_on) {
  ASSERT_EQ(111U, written().size());
  const auto put = [&](std::size_t length) {
    return schema_->put_Description(bstr(std::string(length, 'd')).get());
  };
  ASSERT_EQ(S_OK, put(2046 - 111));
  EXPECT_EQ(2046U, written().size());
  ASSERT_EQ(S_OK, put(2047 - 111));
  EXPECT_EQ(E_FAIL, status());
  ASSERT_EQ(S_OK, put(1'000'000));
  EXPECT_EQ(E_FAIL, status());
}

TEST_F(xml_writer, fails_for_many_fields) {
  int fields = 0;
  while (status() == S_OK) {
    ASSERT_EQ(S_OK, add_number("EIGHTCHR", 0));
    ++fields;
  }
  EXPECT_EQ(34, fields) << "33 fields of 57 characters fit";
}

TEST_F(xml_writer, fails_without_a_place_for_the_text) {
  EXPECT_EQ(E_FAIL, schema_->GetSchemaAsXML(nullptr));
  EXPECT_EQ(E_FAIL, schema_.query<IZuCommonDataSchema>()->GetSchemaAsXML(nullptr));
}

TEST_F(xml_writer, writes_the_same_through_the_other_face) {
  ASSERT_EQ(S_OK, add_number("N", 2));
  bstr text;
  EXPECT_EQ(S_OK, schema_.query<IZuCommonDataSchema>()->GetSchemaAsXML(text.out()));
  EXPECT_EQ(written(), text.utf8());
}

}  // namespace
}  // namespace ovtest
