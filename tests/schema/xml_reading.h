// A schema that reads XML texts.
#pragma once

#include "schema/schema_test.h"

namespace ovtest {

class xml_reader : public schema_test {
 protected:
  void read(const std::string& text) { ASSERT_EQ(S_OK, schema_->SetSchemaUsingXML(bstr(text).get())); }
  /// Reads a field's line inside a definition; the definition is double precision.
  void read_field(const std::string& line) { read("<OvDefinition>\n" + line); }
  std::string description() {
    bstr text;
    EXPECT_EQ(S_OK, schema_->get_Description(text.out()));
    return text.utf8();
  }
  bool is_double() {
    VARIANT_BOOL flag = 5;
    EXPECT_EQ(S_OK, schema_->get_DoublePrecisionFlag(&flag));
    return flag != 0;
  }
  double number(const std::string& text) {
    read_field("<OvField name=\"N\" type=\"numeric\" default=\"" + text + "\"/>");
    return count() == 1 ? number_default(1) : -77.0;
  }
};

}  // namespace ovtest
