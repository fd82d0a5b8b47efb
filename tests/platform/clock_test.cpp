#include "platform/clock.h"

#include <gtest/gtest.h>

#include <ctime>

namespace {

TEST(clock, today_is_the_day_of_the_c_library_in_utc) {
  // Twice, in case midnight passes between the two questions.
  for (int attempt = 0; attempt < 2; ++attempt) {
    const std::time_t now = std::time(nullptr);
    const std::tm utc = *std::gmtime(&now);
    const ovf::utc_date today = ovf::today_utc();
    if (today.day != utc.tm_mday && attempt == 0) continue;
    EXPECT_EQ(today.day, utc.tm_mday);
    EXPECT_EQ(today.month, utc.tm_mon + 1);
    EXPECT_EQ(today.year, utc.tm_year + 1900);
    return;
  }
}

}  // namespace
