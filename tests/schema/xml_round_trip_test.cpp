// Random schemas written as XML and read back are the same schemas. Left out is what the form cannot
// hold: names beyond 8 characters; a quote or a line feed in any text; names and descriptions that are
// empty or contain the name of an attribute or an element of the form, which the scanner would take for
// it (so does a default, but that comes behind all others, save "implicit"); text defaults that are
// empty or begin with a blank; numbers that six decimals do not hold; texts of 2,047 characters or more.
#include <random>

#include "schema/schema_test.h"

namespace ovtest {
namespace {

class xml_round_trip : public schema_test, public testing::WithParamInterface<unsigned> {
 protected:
  unsigned any(unsigned below) { return std::uniform_int_distribution<unsigned>(0, below - 1)(random_); }

  /// 1 to `most` characters without a blank at either end.
  std::string word(unsigned most) {
    static const std::string letters = "ABCXYZ0189_.%-/ <>&'=";
    std::string text;
    for (unsigned left = 1 + any(most); left > 0; --left)
      text += letters[any(static_cast<unsigned>(letters.size()))];
    if (text.front() == ' ') text.front() = 'b';
    if (text.back() == ' ') text.back() = 'e';
    return text;
  }
  double value() {
    switch (any(6)) {
      case 0:
        return special(1.0e30);
      case 1:
        return special(-1.0e30);
      case 2:
        return special(1.0e-30);
      case 3:
        return static_cast<double>(static_cast<int>(random_()));
      default:
        return static_cast<double>(static_cast<int>(random_())) / 1'000'000;
    }
  }
  /// Single precision has widened ones, of which the form has the digits of the large ones only.
  double special(double number) const {
    if (is_double_) return number;
    return number == 1.0e-30 ? 0.0 : static_cast<double>(static_cast<float>(number));
  }

  void build() {
    is_double_ = any(2) == 0;
    ASSERT_EQ(S_OK, schema_->put_DoublePrecision(is_double_ ? VARIANT_TRUE : VARIANT_FALSE));
    ASSERT_EQ(S_OK, schema_->put_Description(bstr(word(40)).get()));
    for (unsigned left = any(22); left > 0; --left) {
      const LONG implicit = static_cast<LONG>(any(2));
      if (any(2) == 0) {
        ASSERT_EQ(S_OK, add_number(word(8).c_str(), value(), implicit));
      } else {
        const std::string text = word(12);
        ASSERT_EQ(S_OK,
                  add_text(word(8).c_str(), static_cast<LONG>(text.size() + any(8)), text.c_str(), implicit));
      }
    }
  }

  /// Everything that the schema tells of itself, a line for each field.
  static std::string told(IOvSchema& schema) {
    std::ostringstream all;
    all.precision(17);
    VARIANT_BOOL flag = 0;
    bstr description;
    LONG fields = 0;
    schema.get_DoublePrecisionFlag(&flag);
    schema.get_Description(description.out());
    schema.get_FieldCount(&fields);
    all << flag << " \"" << description.utf8() << "\"\n";
    for (LONG i = 1; i <= fields; ++i) {
      bstr name;
      OvColumnType type{};
      LONG size = 0;
      LONG offset = 0;
      variant value;
      schema.GetFieldName(i, name.out());
      schema.GetFieldType(i, &type);
      schema.GetFieldSize(i, &size);
      schema.GetFieldOffset(i, &offset);
      schema.GetFieldDefault(i, value.out());
      all << name.utf8() << ' ' << type << ' ' << size << ' ' << offset << ' ' << value.number() << " \""
          << to_utf8(value.view()) << "\"\n";
    }
    return all.str();
  }

  std::mt19937 random_{GetParam()};
  bool is_double_ = false;
};

TEST_P(xml_round_trip, gives_the_same_schema) {
  for (int round = 0; round < 40; ++round) {
    *schema_.out() = make_schema().release();
    build();
    bstr text;
    ASSERT_EQ(S_OK, schema_->GetSchemaAsXML(text.out())) << told(*schema_.get());
    const auto copy = make_schema();
    ASSERT_EQ(S_OK, copy->SetSchemaUsingXML(text.get()));
    ASSERT_EQ(told(*schema_.get()), told(*copy)) << text.utf8();
    bstr again;
    ASSERT_EQ(S_OK, copy->GetSchemaAsXML(again.out()));
    ASSERT_EQ(text.utf8(), again.utf8());
  }
}

INSTANTIATE_TEST_SUITE_P(seeds, xml_round_trip, testing::Range(0U, 25U));

}  // namespace
}  // namespace ovtest
