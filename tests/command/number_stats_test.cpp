#include "number_stats.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using command::number_stats;

TEST(number_stats, values_far_from_zero_keep_their_deviation) {
  // The sum of squares less the square of the sum gives 0 or worse here.
  number_stats stats;
  for (const double value : {1e9 + 4, 1e9 + 7, 1e9 + 13, 1e9 + 16}) stats.add(value, false);
  EXPECT_DOUBLE_EQ(stats.mean(), 1e9 + 10);
  EXPECT_DOUBLE_EQ(stats.deviation(), 5.477225575051661);
}

TEST(number_stats, what_is_no_ordinary_number_stays_out) {
  number_stats stats;
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  constexpr double infinity = std::numeric_limits<double>::infinity();
  for (const double value : {nan, infinity, -infinity, 1e30, -2e30, -1e30, 1e-30, 3.0})
    stats.add(value, false);
  EXPECT_EQ(stats.special(), 5u);
  EXPECT_EQ(stats.absent(), 1u);
  EXPECT_EQ(stats.trace(), 1u);
  EXPECT_EQ(stats.values(), 1u);
  EXPECT_EQ(stats.min(), 3.0);
  EXPECT_EQ(stats.max(), 3.0);
}

TEST(number_stats, a_float_has_floats_for_absent_and_trace) {
  number_stats stats;
  stats.add(static_cast<double>(-1e30F), true);
  stats.add(static_cast<double>(1e-30F), true);
  stats.add(1e-30, true);  // no float
  EXPECT_EQ(stats.absent(), 1u);
  EXPECT_EQ(stats.trace(), 1u);
  EXPECT_EQ(stats.values(), 1u);
}

TEST(number_stats, the_histogram_reaches_from_the_smallest_to_the_largest) {
  number_stats stats;
  const double values[] = {-10, -9.5, -9, -9, 0, 10};
  for (const double value : values) stats.add(value, false);
  for (const double value : values) stats.add_to_histogram(value, false);
  stats.add_to_histogram(-1e30, false);
  EXPECT_EQ(stats.histogram(), (std::array<std::uint64_t, 20>{2, 2, 0, 0, 0, 0, 0, 0, 0, 0,  //
                                                              1, 0, 0, 0, 0, 0, 0, 0, 0, 1}));
  EXPECT_EQ(stats.bars(), "██        ▄        ▄");
}

TEST(number_stats, a_range_as_wide_as_can_be_has_a_histogram) {
  number_stats stats;
  for (const double value : {-9e29, 9e29}) stats.add(value, false);
  for (const double value : {-9e29, 9e29}) stats.add_to_histogram(value, false);
  EXPECT_EQ(stats.histogram().front(), 1u);
  EXPECT_EQ(stats.histogram().back(), 1u);
}

TEST(number_stats, none_has_no_bars) { EXPECT_EQ(number_stats().bars(), ""); }

}  // namespace
