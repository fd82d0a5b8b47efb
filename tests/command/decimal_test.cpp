#include "command/decimal.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace {

struct number_case {
  const char* text;
  double value;
};

TEST(decimal, these_texts_are_numbers) {
  constexpr number_case cases[] = {
      {"0", 0.0},
      {"-0", -0.0},
      {"7", 7.0},
      {"-12.50", -12.5},
      {".5", 0.5},
      {"5.", 5.0},
      {"1e5", 1e5},
      {"1E+05", 1e5},
      {"2.5e-3", 2.5e-3},
      {"  12\t", 12.0},
      {"0.0", 0.0},
      {"0.000000000000000000000000", 0.0},
      {"100000000000000000000000", 1e23},
      {"9007199254740992", 9007199254740992.0},
      {"0.30000000000000004", 0.30000000000000004},
      {"0.10000000000000001", 0.1},
      {"0.1000000000000000055511151231257827", 0.1},
      {"1.7976931348623157e308", 1.7976931348623157e308},
      {"-1e30", -1e30},
  };
  for (const number_case& c : cases) {
    const command::number_cell cell = command::read_number(c.text);
    EXPECT_TRUE(cell.is_number) << c.text;
    EXPECT_EQ(cell.value, c.value) << c.text;
    EXPECT_EQ(std::signbit(cell.value), std::signbit(c.value)) << c.text;
  }
}

TEST(decimal, these_texts_are_no_numbers) {
  for (const char* text :
       {"",      " ",      "-",      ".",   "e5",   "1e",    "1e+",   "+1",      "00",   "0123",
        "-01",   "00.5",   "1 2",    "1,5", "0x1F", "nan",   "NaN",   "inf",     "-inf", "Infinity",
        "1e400", "-1e400", "1e-400", "12a", "--1",  "1.2.3", "<0.01", "\xD9\xA1"}) {
    EXPECT_FALSE(command::read_number(text).is_number) << text;
  }
}

TEST(decimal, more_digits_than_a_double_holds_are_no_number) {
  for (const char* text : {"12345678901234567", "9007199254740993", "0.1234567890123456789",
                           "123456789012345678901234567890", "3.14159265358979323846"}) {
    EXPECT_FALSE(command::read_number(text).is_number) << text;
  }
  EXPECT_FALSE(command::read_number("0." + std::string(900, '3')).is_number);
}

TEST(decimal, a_float_keeps_what_it_prints) {
  for (const char* text :
       {"0", "0.1", "2517.4", "0.0299999993", "16777216", "1e38", "123456", "0.123456", "0.000"}) {
    bool kept = false;
    const float value = command::read_float(text, kept);
    EXPECT_TRUE(kept) << text;
    EXPECT_EQ(value, std::stof(text)) << text;
  }
}

TEST(decimal, a_float_loses_the_rest) {
  for (const char* text : {"2296021.09", "16777217", "0.123456789", "1e-46", "-1e-320", "1e39"}) {
    bool kept = true;
    command::read_float(text, kept);
    EXPECT_FALSE(kept) << text;
  }
}

TEST(decimal, a_float_beyond_its_range_is_infinite) {
  bool kept = true;
  EXPECT_EQ(command::read_float("3.5e38", kept), std::numeric_limits<float>::infinity());
  EXPECT_EQ(command::read_float("-1e300", kept), -std::numeric_limits<float>::infinity());
  EXPECT_EQ(command::read_float("1e-300", kept), 0.0f);
}

TEST(decimal, a_float_is_rounded_once) {
  // Just above the middle between two floats; the nearest double is the middle itself, and would go down.
  bool kept = true;
  EXPECT_EQ(command::read_float("1.00000005960464477540", kept), 1.00000012f);
}

}  // namespace
