// Floats widened so that seven decimal digits stay tidy.
#include "platform/decimal_tidy.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace ovtest {
namespace {

using ovf::tidied;

TEST(decimal_tidying, keeps_seven_digits) {
  EXPECT_EQ(0.1, tidied(0.1F));
  EXPECT_EQ(-0.1, tidied(-0.1F));
  EXPECT_EQ(0.2, tidied(0.2F));
  EXPECT_EQ(1.234567, tidied(1.234567F));
  EXPECT_EQ(12.34567, tidied(12.34567F));
  EXPECT_EQ(123.4567, tidied(123.4567F));
  EXPECT_EQ(-1234.567, tidied(-1234.567F));
  EXPECT_EQ(12345.67, tidied(12345.67F));
}

TEST(decimal_tidying, changes_scale_at_the_powers_of_ten) {
  EXPECT_EQ(1.0, tidied(1.0F));
  EXPECT_EQ(10.0, tidied(10.0F));
  EXPECT_EQ(100.0, tidied(100.0F));
  EXPECT_EQ(1000.0, tidied(1000.0F));
  EXPECT_EQ(10000.0, tidied(10000.0F));
  // The largest float below 1: ten million times it is 9,999,999.4, which a float rounds to 9,999,999.
  EXPECT_EQ(0.9999999, tidied(std::nextafter(1.0F, 0.0F)));
}

TEST(decimal_tidying, rounds_the_product_to_a_float_first) {
  // A million times the first is 1,407,526.493, as a float 1,407,526.5, which a half makes 1,407,527.
  EXPECT_EQ(1.407527, tidied(1.4075264930725098F));
  // A hundred thousand times this one is 6,985,040.283, as a float 6,985,040.5.
  EXPECT_EQ(69.85041, tidied(69.85040283203125F));
  EXPECT_EQ(-69.85041, tidied(-69.85040283203125F));
  // So a third ends in a 4.
  EXPECT_EQ(0.3333334, tidied(1.0F / 3.0F));
}

TEST(decimal_tidying, leaves_large_numbers_alone) {
  EXPECT_EQ(static_cast<double>(123456.7F), tidied(123456.7F));
  EXPECT_EQ(100000.0, tidied(100000.0F));
  EXPECT_EQ(static_cast<double>(-1.0e30F), tidied(-1.0e30F));
  EXPECT_EQ(static_cast<double>(std::numeric_limits<float>::max()),
            tidied(std::numeric_limits<float>::max()));
}

TEST(decimal_tidying, makes_nothing_of_very_small_numbers) {
  EXPECT_EQ(0.0, tidied(1.0e-30F));
  EXPECT_EQ(0.0, tidied(4.0e-8F));
  EXPECT_EQ(0.0000001, tidied(6.0e-8F));
  EXPECT_EQ(0.0, tidied(0.0F));
  EXPECT_FALSE(std::signbit(tidied(-0.0F)));
}

TEST(decimal_tidying, passes_what_is_no_number) {
  EXPECT_TRUE(std::isnan(tidied(std::numeric_limits<float>::quiet_NaN())));
  EXPECT_EQ(std::numeric_limits<double>::infinity(), tidied(std::numeric_limits<float>::infinity()));
  EXPECT_EQ(-std::numeric_limits<double>::infinity(), tidied(-std::numeric_limits<float>::infinity()));
}

}  // namespace
}  // namespace ovtest
