// Values that are not there, and results that cannot be.
#include <limits>

#include "filter/filter_test.h"

namespace ovtest {
namespace {

TEST(filter_absent, is_asked_for) {
  check({{"A IS ABSENT", "-", true},
         {"A IS ABSENT", "", true},
         {"A IS ABSENT", "0", false},
         {"A IS ABSENT", "X", false},
         {"A IS NOT ABSENT", "-", false},
         {"A IS NOT ABSENT", "1", true},
         {"A IS NOT ABSENT", "X", true},
         {"A + B IS ABSENT", "1,-", true},
         {"A + B IS ABSENT", "1,2", false},
         {"NOT A IS ABSENT", "1", true},
         {"A IS ABSENT AND B = 1", "-,1", true}});
}

TEST(filter_absent, no_comparison_with_it_holds) {
  for (const char* condition : {"A = 1",
                                "A <> 1",
                                "A < 1",
                                "A <= 1",
                                "A > 1",
                                "A >= 1",
                                "1 <> A",
                                "A = 'X'",
                                "A <> 'X'",
                                "A < 'X'",
                                "A IN (1, 2)",
                                "A NOT IN (1, 2)",
                                "A IN ('X', 'Y')",
                                "A NOT IN ('X', 'Y')",
                                "A BETWEEN 1 AND 2",
                                "A NOT BETWEEN 1 AND 2",
                                "A LIKE '%'",
                                "A NOT LIKE '%'",
                                "A = A",
                                "A <> A",
                                "A + 1 <> 1"}) {
    EXPECT_FALSE(passes(condition, "-")) << condition;
    EXPECT_TRUE(passes("NOT (" + std::string(condition) + ")", "-")) << condition;
  }
  check({{"A = B", "1,-", false},
         {"A <> B", "-,1", false},
         {"A NOT IN (B, 2)", "1,-", false},
         {"A IN (B, 1)", "1,-", true},
         {"A BETWEEN B AND 2", "1,-", false},
         {"A BETWEEN 0 AND B", "1,-", false}});
}

TEST(filter_absent, bounds_put_nothing_outside_them) {
  check({{"A NOT BETWEEN B AND 2", "3,-", false},
         {"A NOT BETWEEN 2 AND B", "1,-", false},
         {"A NOT BETWEEN B AND 2", "3,1", true},
         {"A NOT BETWEEN 2 AND B", "1,3", true},
         {"A NOT BETWEEN B AND B", "1,-", false},
         {"A NOT BETWEEN 'B' AND B", "A,-", false},
         {"A NOT BETWEEN 'B' AND B", "A,C", true},
         {"A NOT BETWEEN 2 AND 3", "X", false},
         {"A NOT BETWEEN 1 / 0 AND 3", "5", false},
         {"NOT (A BETWEEN B AND 2)", "3,-", true}});
}

TEST(filter_absent, texts_in_quotes_are_so_when_they_are_blank) {
  check({{"'' IS ABSENT", "", true},
         {"' \t' IS ABSENT", "", true},
         {"'' IS NOT ABSENT", "", false},
         {"'X' IS ABSENT", "", false},
         {"if(A, '', 'X') IS ABSENT", "1", true},
         {"if(A, '', 'X') IS ABSENT", "0", false}});
}

TEST(filter_absent, arithmetic_hands_it_on) {
  for (const char* result : {"A + 1", "1 - A", "A * 0", "0 / A", "A ^ 0", "1 ^ A", "-A", "+A", "abs(A)",
                             "sqrt(A)", "log(A)", "exp(A)", "int(A)", "mod(A, 2)", "mod(2, A)", "min(A, 1)",
                             "min(1, A)", "max(A, 1)", "max(1, 2, A)"}) {
    EXPECT_TRUE(passes(std::string(result) + " IS ABSENT", "-")) << result;
  }
}

TEST(filter_absent, what_has_no_finite_result) {
  check({{"A / B IS ABSENT", "1,0", true},
         {"A / B IS ABSENT", "0,0", true},
         {"sqrt(A) IS ABSENT", "-1", true},
         {"log(A) IS ABSENT", "0", true},
         {"log(A) IS ABSENT", "-1", true},
         {"exp(A) IS ABSENT", "1000", true},
         {"mod(A, 0) IS ABSENT", "1", true},
         {"A ^ 0.5 IS ABSENT", "-4", true},
         {"A ^ -1 IS ABSENT", "0", true},
         {"A * 10 IS ABSENT", "1e308", true},
         {"1 / 0 IS ABSENT", "", true},
         {"sqrt(-1) IS ABSENT", "", true},
         {"1 / 0 = 1 / 0", "", false},
         {"A / B > 1", "1,0", false}});
}

TEST(filter_absent, does_not_pass_and_is_no_condition) {
  check({{"A", "-", false},
         {"A + 1", "-", false},
         {"A OR B", "-,1", true},
         {"A AND B", "-,1", false},
         {"NOT A", "-", true},
         {"if(A, 1, 2) = 2", "-", true},
         {"if(B, A, 1) IS ABSENT", "1,-", true}});
}

TEST(filter_absent, of_numbers_that_are_none) {
  const auto filter = make_filter();
  const auto values = values_of(filter);
  ASSERT_EQ(S_OK, set_expression(*filter.get(), "A IS ABSENT"));
  SHORT result = 0;
  ASSERT_EQ(S_OK, values->SetNumber(0, std::numeric_limits<double>::quiet_NaN()));
  EXPECT_EQ(S_OK, values->Test(&result));
  EXPECT_EQ(1, result);
  ASSERT_EQ(S_OK, values->SetNumber(0, std::numeric_limits<double>::infinity()));
  EXPECT_EQ(S_OK, values->Test(&result));
  EXPECT_EQ(0, result);
}

TEST(filter_absent, infinite_values_are_numbers_that_nothing_is_calculated_from) {
  check({{"A > 1e308", "INF", true},
         {"A < -1e308", "-INF", true},
         {"A + 1 IS ABSENT", "INF", true},
         {"A = 'INF'", "INF", true}});
}

}  // namespace
}  // namespace ovtest
