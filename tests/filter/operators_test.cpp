// Operators, their order, and the spellings of words.
#include "filter/filter_test.h"

namespace ovtest {
namespace {

TEST(filter_operators, compare_numbers) {
  check({{"A = 2", "2", true},     {"A = 2", "3", false},    {"A == 2", "2.0", true},
         {"A == 2", "1", false},   {"A <> 2", "3", true},    {"A <> 2", "2", false},
         {"A != 2", "1", true},    {"A != 2", "2", false},   {"A < 2", "1.5", true},
         {"A < 2", "2", false},    {"A <= 2", "2", true},    {"A <= 2", "2.1", false},
         {"A > 2", "2.5", true},   {"A > 2", "2", false},    {"A >= 2", "2", true},
         {"A >= 2", "1.9", false}, {"2 < A", "3", true},     {"2 < A", "1", false},
         {"A < B", "1,2", true},   {"A < B", "2,1", false},  {"A = B", "10,1e1", true},
         {"A < B", "9,10", true},  {"A > -1.5", "-1", true}, {"A > -1.5", "-2", false}});
}

TEST(filter_operators, calculate) {
  check({{"A + B = 5", "2,3", true},
         {"A - B = -1", "2,3", true},
         {"A * B = 6", "2,3", true},
         {"A / B = 2.5", "5,2", true},
         {"A ^ B = 8", "2,3", true},
         {"-A = 2", "-2", true},
         {"+A = -2", "-2", true},
         {"2 + 3 = 5", "", true},
         {"2 - 3 = -1", "", true},
         {"2 * 3 = 6", "", true},
         {"5 / 2 = 2.5", "", true},
         {"2 ^ 3 = 8", "", true},
         {"A ^ 0.5 = 3", "9", true},
         {"A ^ -1 = 0.5", "2", true},
         {"A + B = 6", "2,3", false},
         {"A - B", "2,2", false},
         {"A - B", "2,1", true}});
}

TEST(filter_operators, bind_in_the_order_of_mathematics) {
  check({{"2 + 3 * 4 = 14", "", true},
         {"(2 + 3) * 4 = 20", "", true},
         {"A + B * C = 14", "2,3,4", true},
         {"10 - 4 - 3 = 3", "", true},
         {"A - B - C = 3", "10,4,3", true},
         {"24 / 4 / 2 = 3", "", true},
         {"A / B * C = 12", "24,4,2", true},
         {"2 ^ 3 ^ 2 = 512", "", true},
         {"A ^ B ^ C = 512", "2,3,2", true},
         {"-2 ^ 2 = -4", "", true},
         {"-A ^ 2 = -4", "2", true},
         {"(-A) ^ 2 = 4", "2", true},
         {"2 * -3 = -6", "", true},
         {"2 - -3 = 5", "", true},
         {"- - A = 2", "2", true},
         {"A + 1 > B * 2", "2,1", true},
         {"A > 1 AND B > 1 OR C > 1", "0,0,2", true},
         {"A > 1 OR B > 1 AND C > 1", "2,0,0", true},
         {"(A > 1 OR B > 1) AND C > 1", "2,0,0", false},
         {"NOT A > 1", "0", true},
         {"NOT A > 1 AND B > 1", "0,0", false},
         {"NOT (A > 1 AND B > 1)", "0,0", true},
         {"NOT NOT A > 1", "2", true},
         {"(A > 1) + (B > 1) = 2", "2,2", true}});
}

TEST(filter_operators, join_conditions) {
  check({{"A AND B", "1,2", true},
         {"A AND B", "1,0", false},
         {"A AND B", "0,1", false},
         {"A && B", "1,1", true},
         {"A && B", "0,1", false},
         {"A OR B", "0,0", false},
         {"A OR B", "0,3", true},
         {"A OR B", "3,0", true},
         {"A || B", "0,1", true},
         {"A || B", "0,0", false},
         {"NOT A", "0", true},
         {"NOT A", "5", false},
         {"!A", "0", true},
         {"!A = 1", "0", true},
         {"!(A = 1)", "1", false},
         {"1 AND 0", "", false},
         {"1 AND 2", "", true},
         {"0 OR 0", "", false},
         {"0 OR 2", "", true},
         {"NOT 0", "", true},
         {"1 AND A", "2", true},
         {"A AND 1", "0", false},
         {"(A AND B) = 1", "5,5", true},
         {"(A OR B) = 1", "0,5", true}});
}

TEST(filter_operators, look_into_ranges_and_lists) {
  check({{"A BETWEEN 1 AND 3", "1", true},
         {"A BETWEEN 1 AND 3", "3", true},
         {"A BETWEEN 1 AND 3", "0.9", false},
         {"A BETWEEN 1 AND 3", "3.1", false},
         {"A NOT BETWEEN 1 AND 3", "3.1", true},
         {"A NOT BETWEEN 1 AND 3", "0", true},
         {"A NOT BETWEEN 1 AND 3", "2", false},
         {"A BETWEEN B AND B + 2", "5,4", true},
         {"A BETWEEN 3 AND 1", "2", false},
         {"A BETWEEN 1 AND 3 AND B", "2,1", true},
         {"A BETWEEN 1 AND 3 AND B", "2,0", false},
         {"2 BETWEEN 1 AND 3", "", true},
         {"A IN (1)", "1", true},
         {"A IN (1, 2, 3)", "3", true},
         {"A IN (1, 2, 3)", "1", true},
         {"A IN (1, 2, 3)", "4", false},
         {"A NOT IN (1, 2, 3)", "4", true},
         {"A NOT IN (1, 2, 3)", "2", false},
         {"A NOT IN (1)", "1", false},
         {"A + 1 IN (B, B * 2)", "3,2", true},
         {"A IN (B, 'X')", "X,Y", true},
         {"A IN (1, 'X')", "X", true},
         {"2 IN (1, 2)", "", true},
         {"3 NOT IN (1, 2)", "", true},
         {"NOT A IN (1, 2)", "3", true},
         {"A IN (1,2) AND B IN (3,4)", "2,3", true}});
}

TEST(filter_operators, words_may_be_in_any_case) {
  check({{"A and B", "1,1", true},
         {"A AnD B", "1,0", false},
         {"A or B", "0,1", true},
         {"A oR B", "0,0", false},
         {"not A", "0", true},
         {"Not A", "1", false},
         {"A in (1, 2)", "2", true},
         {"A nOt iN (1, 2)", "2", false},
         {"A between 1 and 2", "2", true},
         {"A Not Between 1 And 2", "2", false},
         {"A like 'a%'", "abc", true},
         {"A not Like 'a%'", "abc", false},
         {"A is absent", "-", true},
         {"A Is Not Absent", "-", false},
         {"ABS(A) = 1", "-1", true},
         {"Abs(A) = 1", "-1", true},
         {"mAx(A, B) = 2", "1,2", true},
         {"IF(A, 1, 0)", "1", true}});
}

TEST(filter_operators, need_no_blanks_and_allow_many) {
  check({{"A>=1&&B<2", "1,1", true},
         {"  A\t>=\r\n1\n  ", "1", true},
         {"A>-1", "0", true},
         {"A<-1", "-2", true},
         {"(((A)))=1", "1", true},
         {"A IN(1,2)", "2", true},
         {"NOT(A=1)", "2", true},
         {"A\xC2\xA0= 1", "1", true}});  // a blank that does not break
}

TEST(filter_operators, numbers_as_people_write_them) {
  check({{"A = 1.5", "1.5", true},
         {"A = .5", "0.5", true},
         {"A = 5.", "5", true},
         {"A = 1e3", "1000", true},
         {"A = 1E-3", "0.001", true},
         {"A = 1.5e+2", "150", true},
         {"A = 007", "7", true},
         {"A = 1e-400", "0", true},
         {"A = 1.7976931348623157e308", "1.7976931348623157e308", true},
         {"A = 4.9406564584124654e-324", "4.9406564584124654e-324", true},
         {"A = 0.1 + 0.2", "0.3", false},
         {"A = 9007199254740993", "9007199254740992", true}});
}

}  // namespace
}  // namespace ovtest
