#include "filter/filter_test.h"

namespace ovtest {
namespace {

TEST(filter_functions, of_one_number) {
  check({{"abs(A) = 2", "-2", true},
         {"abs(A) = 2", "2", true},
         {"sqrt(A) = 3", "9", true},
         {"exp(A) = 1", "0", true},
         {"log(A) = 0", "1", true},
         {"abs(log(exp(A)) - 2) < 1e-12", "2", true},
         {"log(A) BETWEEN 2.302585 AND 2.302586", "10", true},  // to the base e
         {"int(A) = 1", "1.9", true},
         {"int(A) = -2", "-1.1", true},
         {"int(A) = 3", "3", true},
         {"abs(-2) = 2", "", true},
         {"sqrt(9) = 3", "", true},
         {"int(-1.1) = -2", "", true}});
}

TEST(filter_functions, of_several_numbers) {
  check({{"min(A, B) = 1", "2,1", true},
         {"max(A, B) = 2", "2,1", true},
         {"min(A, B, C) = 1", "3,2,1", true},
         {"max(A, B, C, 7) = 7", "3,2,1", true},
         {"min(3, 1, 2) = 1", "", true},
         {"mod(A, B) = 1", "7,3", true},
         {"mod(A, B) = 2", "-7,3", true},
         {"mod(A, B) = -2", "7,-3", true},
         {"mod(A, B) = -1", "-7,-3", true},
         {"mod(A, B) = 0", "6,3", true},
         {"mod(A, 0.5) = 0.25", "1.25", true}});
}

TEST(filter_functions, if_keeps_one_of_two_values) {
  check({{"if(A > 1, B, C) = 5", "2,5,6", true},
         {"if(A > 1, B, C) = 6", "0,5,6", true},
         {"if(A > 1, 'X', 'Y') = 'X'", "2", true},
         {"if(A > 1, 'X', 'Y') = 'X'", "0", false},
         {"if(A, 1, 0)", "1", true},
         {"if(A, 1, 0)", "0", false},
         {"if(A = 1, B, if(A = 2, C, 9)) = 4", "2,3,4", true},
         {"if(A = 1, B, if(A = 2, C, 9)) = 9", "3,3,4", true},
         {"if(1, A, B) + 1 = 3", "2,7", true},
         {"if(A > 1, B, 'none') = 'none'", "0,X", true},
         {"if(A > 1 AND B, B > 2 OR C, NOT C)", "2,1,1", true}});
}

TEST(filter_functions, are_no_reserved_names) {
  const auto filter = make_filter();
  ASSERT_EQ(S_OK, set_expression(*filter.get(), "MIN < MAX AND If = 1 AND log"));
  EXPECT_EQ((std::vector<std::string>{"MIN", "MAX", "If", "log"}), variables(*filter.get()));
  EXPECT_EQ(1, evaluate(*filter.get(), "1,2,1,1"));
}

TEST(filter_functions, take_conditions_and_expressions) {
  check({{"abs(A - B * 2) = 4", "2,3", true},
         {"max(A > 1, B > 1) = 1", "0,2", true},
         {"min((A), (B)) = 1", "2,1", true},
         {"sqrt(abs(min(A, B))) = 2", "-4,0", true}});
}

}  // namespace
}  // namespace ovtest
