#include "platform/printed_float.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <random>

#include "platform/variant.h"

namespace {

using ovf::printed_value;

TEST(PrintedFloat, IsWhatSevenDigitsSay) {
  EXPECT_EQ(printed_value(0.1F), 0.1);
  EXPECT_EQ(printed_value(-0.1F), -0.1);
  EXPECT_EQ(printed_value(1234.5678F), 1234.568);
  EXPECT_EQ(printed_value(16777216.0F), 16777220.0);
  EXPECT_EQ(printed_value(-1e30F), -1e30);
  EXPECT_EQ(printed_value(1e-30F), 1e-30);
  EXPECT_EQ(printed_value(9.9999999F), 10.0);
  EXPECT_EQ(printed_value(3.4028235e38F), 3.402823e38);
  EXPECT_EQ(printed_value(1e-45F), 1.401298e-45);
  EXPECT_EQ(printed_value(0.0F), 0.0);
}

TEST(PrintedFloat, AHalfGoesAwayFromZero) {
  EXPECT_EQ(printed_value(125225.25F), 125225.3);
  EXPECT_EQ(printed_value(-125225.25F), -125225.3);
  EXPECT_EQ(printed_value(125225.75F), 125225.8);
}

TEST(PrintedFloat, WhatIsNoNumberStays) {
  const float infinity = std::numeric_limits<float>::infinity();
  EXPECT_EQ(printed_value(infinity), std::numeric_limits<double>::infinity());
  EXPECT_EQ(printed_value(-infinity), -std::numeric_limits<double>::infinity());
  EXPECT_TRUE(std::isnan(printed_value(std::numeric_limits<float>::quiet_NaN())));
}

TEST(PrintedFloat, EveryFloatReadsAsItsText) {
  std::mt19937 random(11);
  for (int i = 0; i < 20'000; ++i) {
    const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
    if (!std::isfinite(value)) continue;
    const std::string text = ovf::ansi_from_wide(ovf::to_text(ovf::variant(value)));
    double read = 0;
    std::from_chars(text.data(), text.data() + text.size(), read);
    ASSERT_EQ(printed_value(value), read) << text;
  }
}

}  // namespace
