// The number that a text begins with, as the C library reads it.
#include "schema/leading_number.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "ovfile/smart.h"

namespace ovtest {
namespace {

double number(const std::string& text) { return ovf::leading_number(ovfile::to_wide(text)); }
LONG integer(const std::string& text) { return ovf::leading_integer(ovfile::to_wide(text)); }

constexpr double infinite = std::numeric_limits<double>::infinity();

TEST(leading_number, reads_decimals) {
  EXPECT_EQ(0.0, number("0"));
  EXPECT_EQ(12.5, number("12.5"));
  EXPECT_EQ(-12.5, number("-12.50"));
  EXPECT_EQ(7.0, number("+7."));
  EXPECT_EQ(0.25, number(".25"));
  EXPECT_EQ(1500.0, number("1.5e3"));
  EXPECT_EQ(0.0015, number("1.5E-3"));
  EXPECT_EQ(0.1, number("0.1000000000000000055511151231257827"));
  EXPECT_TRUE(std::signbit(number("-0")));
}

TEST(leading_number, skips_blanks_before_it_and_stops_behind_it) {
  EXPECT_EQ(3.0, number(" \t\r\n\v\f3 4"));
  EXPECT_EQ(3.0, number("3,5"));
  EXPECT_EQ(3.0, number("3e"));
  EXPECT_EQ(3.0, number("3e+"));
  EXPECT_EQ(3.0, number("3\xE2\x82\xAC"));
  EXPECT_EQ(0.0, number("\xC2\xA0"
                        "3"))
      << "a hard blank is none";
  EXPECT_EQ(3.1, number("3.1.4"));
}

TEST(leading_number, is_0_where_there_is_none) {
  for (const char* text : {"", " ", "x", "-", "+", ".", "-.", "e5", ".e5", "+-5", "-+5", "--5", "- 5"}) {
    EXPECT_EQ(0.0, number(text)) << text;
  }
}

TEST(leading_number, has_a_minus_where_there_is_a_digit) {
  for (const char* none : {"-", "- 1", "-x", "--1", "-."}) EXPECT_FALSE(std::signbit(number(none))) << none;
  for (const char* some : {"-0", "-0x", "-1e-999"}) EXPECT_TRUE(std::signbit(number(some))) << some;
}

TEST(leading_number, reads_hexadecimals) {
  EXPECT_EQ(16.0, number("0x10"));
  EXPECT_EQ(-12.0, number("-0X1.8p3"));
  EXPECT_EQ(0.5, number("0x.8"));
  EXPECT_EQ(0.0, number("0x"));
  EXPECT_EQ(0.0, number("0xg"));
  EXPECT_EQ(0.0, number("0x.p1"));
  EXPECT_EQ(infinite, number("0x1p99999999999999999999"));
  EXPECT_EQ(0.0, number("0x1p-99999999999999999999"));
}

TEST(leading_number, reads_what_is_no_number) {
  EXPECT_EQ(infinite, number("inf"));
  EXPECT_EQ(-infinite, number("-Infinity!"));
  EXPECT_EQ(infinite, number("infinit"));
  EXPECT_TRUE(std::isnan(number("nan")));
  EXPECT_TRUE(std::isnan(number("-NaN(7)")));
}

TEST(leading_number, is_infinite_or_0_beyond_the_type) {
  EXPECT_EQ(1.7976931348623157e308, number("1.7976931348623157e308"));
  EXPECT_EQ(infinite, number("1e309"));
  EXPECT_EQ(-infinite, number("-1e99999999999999999999"));
  EXPECT_EQ(4.9406564584124654e-324, number("4e-324"));
  EXPECT_EQ(0.0, number("1e-99999999999999999999"));
  EXPECT_EQ(0.0, number("2e-324"));
  EXPECT_EQ(infinite, number("1" + std::string(400, '0') + "e-5")) << "large in spite of its exponent";
  EXPECT_EQ(0.0, number("0." + std::string(400, '0') + "1e5")) << "small in spite of its exponent";
  EXPECT_EQ(1.0, number("1" + std::string(100'000, '0') + "e-100000"));
}

TEST(leading_integer, reads_decimal_digits) {
  EXPECT_EQ(0, integer(""));
  EXPECT_EQ(8, integer("8"));
  EXPECT_EQ(-8, integer(" \t-08.9"));
  EXPECT_EQ(8, integer("+8x"));
  EXPECT_EQ(0, integer("0x10"));
  EXPECT_EQ(0, integer("+-8"));
  EXPECT_EQ(0, integer("--8"));
  EXPECT_EQ(0, integer("- 8"));
  EXPECT_EQ(1, integer("1e3"));
}

TEST(leading_integer, stops_at_the_ends_of_32_bits) {
  EXPECT_EQ(2147483647, integer("2147483647"));
  EXPECT_EQ(2147483647, integer("2147483648"));
  EXPECT_EQ(2147483647, integer("99999999999999999999999"));
  EXPECT_EQ(-2147483647 - 1, integer("-2147483648"));
  EXPECT_EQ(-2147483647 - 1, integer("-99999999999999999999999"));
}

}  // namespace
}  // namespace ovtest
