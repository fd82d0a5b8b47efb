#include "table/decimal_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <stdexcept>
#include <vector>

namespace {

std::string decimal(double value, long digits) {
  std::u16string text;
  ovf::append_decimal(text, value, digits);
  return {text.begin(), text.end()};
}

TEST(DecimalText, TrailingZerosAndThePointGo) {
  EXPECT_EQ(decimal(1.5, -1), "1.5");
  EXPECT_EQ(decimal(2, -1), "2");
  EXPECT_EQ(decimal(0, -1), "0");
  EXPECT_EQ(decimal(-0.0, -1), "-0");
  EXPECT_EQ(decimal(100, -1), "100");
  EXPECT_EQ(decimal(-12.25, -1), "-12.25");
  EXPECT_EQ(decimal(0.0000004, -1), "0");
  EXPECT_EQ(decimal(0.0000006, -1), "0.000001");
  EXPECT_EQ(decimal(999999.9999999, -1), "1000000");
}

TEST(DecimalText, DigitsAreRoundedOrFilledUp) {
  EXPECT_EQ(decimal(1.005, 2), "1.00");  // the double is 1.00499999999999989…
  EXPECT_EQ(decimal(1.5, 0), "2");
  EXPECT_EQ(decimal(2.5, 0), "2");
  EXPECT_EQ(decimal(0.125, 2), "0.12");
  EXPECT_EQ(decimal(1.5, 6), "1.500000");
  EXPECT_EQ(decimal(1.23456789, 8), "1.23456800");
  EXPECT_EQ(decimal(1.23456789, 3), "1.235");
  EXPECT_EQ(decimal(1.5, -2), "1.500000");
  EXPECT_EQ(decimal(1.5, std::numeric_limits<int>::min()), "1.500000");
}

TEST(DecimalText, HalvesOfAMillionthGoToTheEvenSide) {
  EXPECT_EQ(decimal(0.0000005, -2), "0.000000");   // the double is 4.99999999999999977…e-7
  EXPECT_EQ(decimal(0.00390625, -2), "0.003906");  // exactly 0.00390625
  EXPECT_EQ(decimal(0.01171875, -2), "0.011719");
  EXPECT_EQ(decimal(1.0 / 128, -2), "0.007812");  // exactly 0.0078125
  EXPECT_EQ(decimal(3.0 / 128, -2), "0.023438");  // exactly 0.0234375
}

TEST(DecimalText, WhatIsNoNumberHasAWord) {
  const double infinity = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(decimal(infinity, -1), "inf");
  EXPECT_EQ(decimal(-infinity, -1), "-inf");
  EXPECT_EQ(decimal(nan, -1), "nan");
  EXPECT_EQ(decimal(-nan, -1), "nan");
  EXPECT_EQ(decimal(infinity, 0), "inf");
  EXPECT_EQ(decimal(infinity, 2), "inf.00");  // there is no point in it, so one is added
}

TEST(DecimalText, LargeNumbersKeepEveryDigit) {
  EXPECT_EQ(decimal(-1e30, -1), "-1000000000000000019884624838656");
  EXPECT_EQ(decimal(1e30, 1), "1000000000000000019884624838656.0");
  EXPECT_EQ(decimal(1e300, -1).size(), 301U);
  EXPECT_EQ(decimal(std::numeric_limits<double>::max(), -2).size(), 316U);
  EXPECT_EQ(decimal(1e-300, -1), "0");
}

TEST(DecimalText, TheLongestTextHasALimit) {
  EXPECT_EQ(decimal(1, 32'765).size(), 32'767U);
  EXPECT_THROW(decimal(1, 32'766), std::out_of_range);
  EXPECT_THROW(decimal(std::numeric_limits<double>::infinity(), std::numeric_limits<int>::max()),
               std::out_of_range);
  try {
    decimal(1, 32'766);
  } catch (const std::out_of_range& error) {
    EXPECT_STREQ(error.what(), "ov_size_t_2_short");
  }
}

/// The C library prints every finite double with correctly rounded digits.
TEST(DecimalText, EveryDoubleReadsAsTheCLibraryPrintsIt) {
  std::mt19937_64 random(7);
  std::vector<double> values = {4e6, 4.0000001e6, 3999999.9999995, 0.5e-6, 1.5e-6, 2.5e-6};
  for (int i = 0; i < 200'000; ++i) {
    const auto whole = static_cast<double>(static_cast<long long>(random() >> (random() % 60 + 2)));
    values.push_back(whole / static_cast<double>(1 << (random() % 30)));
    values.push_back(-whole / 1e6);
    values.push_back(static_cast<double>(static_cast<float>(whole / 1e4)));
  }
  char printed[512];
  for (const double value : values) {
    std::snprintf(printed, sizeof printed, "%f", value);
    ASSERT_EQ(decimal(value, 6), printed);
    std::snprintf(printed, sizeof printed, "%.3f", value);
    ASSERT_EQ(decimal(value, 3), printed);
  }
}

}  // namespace
