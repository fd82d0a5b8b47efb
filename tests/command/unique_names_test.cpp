#include "command/unique_names.h"

#include <gtest/gtest.h>

namespace {

using names = std::vector<std::string>;
using command::letter_case;
using command::unique_names;

TEST(unique_names, different_names_stay) {
  EXPECT_EQ(unique_names({"A", "B", "\xC3\xA9"}, letter_case::does_not_count), (names{"A", "B", "\xC3\xA9"}));
  EXPECT_EQ(unique_names({}, letter_case::counts), names{});
}

TEST(unique_names, repeated_ones_get_a_number) {
  EXPECT_EQ(unique_names({"A", "A", "B", "A"}, letter_case::counts), (names{"A", "A_2", "B", "A_3"}));
}

TEST(unique_names, case_counts_where_it_shall) {
  EXPECT_EQ(unique_names({"Au", "AU", "au"}, letter_case::counts), (names{"Au", "AU", "au"}));
  EXPECT_EQ(unique_names({"Au", "AU", "au"}, letter_case::does_not_count), (names{"Au", "AU_2", "au_3"}));
}

TEST(unique_names, what_is_made_takes_no_name_that_is_there) {
  EXPECT_EQ(unique_names({"A", "A", "A_2", "a_2"}, letter_case::does_not_count),
            (names{"A", "A_3", "A_2", "a_2_2"}));
}

TEST(unique_names, a_column_without_a_name_gets_one) {
  EXPECT_EQ(unique_names({"", "COL1", "", "col3"}, letter_case::does_not_count),
            (names{"COL1_2", "COL1", "COL3_2", "col3"}));
}

TEST(unique_names, many_equal_ones_take_no_time) {
  const names equal(200'000, "A");
  const names made = unique_names(equal, letter_case::does_not_count);
  EXPECT_EQ(made.front(), "A");
  EXPECT_EQ(made.back(), "A_200000");
}

}  // namespace
