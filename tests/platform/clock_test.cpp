#include "platform/clock.h"

#include <gtest/gtest.h>

#include <array>
#include <ctime>

namespace {

std::array<int, 3> today_of_the_c_library() {
  const std::time_t now = std::time(nullptr);
  const std::tm utc = *std::gmtime(&now);
  return {utc.tm_year + 1900, utc.tm_mon + 1, utc.tm_mday};
}

TEST(clock, today_is_the_day_of_the_c_library_in_utc) {
  const auto before = today_of_the_c_library();
  const ovf::utc_date today = ovf::today_utc();
  const auto after = today_of_the_c_library();  // midnight may have passed
  const std::array<int, 3> found = {today.year, today.month, today.day};
  EXPECT_TRUE(found == before || found == after);
}

}  // namespace
