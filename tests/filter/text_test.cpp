// Texts: quotes, comparisons, patterns, and texts that read as numbers.
#include "filter/filter_test.h"

namespace ovtest {
namespace {

TEST(filter_text, stands_in_either_quotes) {
  check({{"A = 'ORE'", "ORE", true},
         {"A = \"ORE\"", "ORE", true},
         {"A = 'it''s'", "it's", true},
         {"A = \"say \"\"no\"\"\"", "say \"no\"", true},
         {"A = 'say \"no\"'", "say \"no\"", true},
         {"A = \"it's\"", "it's", true},
         {"A = ''''", "'", true},
         {"'X' = 'X'", "", true},
         {"'X' = 'Y'", "", false},
         {"A = 'd\xC3\xA9'", "d\xC3\xA9", true}});
}

TEST(filter_text, compares_by_its_characters_and_their_case) {
  check({{"A = 'ore'", "ORE", false},
         {"A <> 'ore'", "ORE", true},
         {"A < 'B'", "A", true},
         {"A < 'B'", "B", false},
         {"A <= 'B'", "B", true},
         {"A > 'B'", "a", true},
         {"A >= 'AB'", "A", false},
         {"A > 'A'", "AB", true},
         {"A = B", "X,X", true},
         {"A < B", "X,Y", true},
         {"A = B", "X,x", false},
         {"A <> B", "X,Y", true},
         {"A BETWEEN 'B' AND 'D'", "C", true},
         {"A BETWEEN 'B' AND 'D'", "E", false},
         {"A IN ('B', 'C')", "C", true},
         {"A NOT IN ('B', 'C')", "D", true}});
}

TEST(filter_text, blanks_at_the_end_do_not_count) {
  check({{"A = 'X'", "X   ", true},
         {"A = 'X   '", "X", true},
         {"A <> 'X'", "X ", false},
         {"A = B", "X ,X   ", true},
         {"A = 'X'", " X", false},
         {"A IN ('Y', 'X ')", "X", true},
         {"A LIKE 'X'", "X  ", true},
         {"A LIKE '_'", "X  ", true},
         {"A IS ABSENT", "   ", true},
         {"A <> ''", "X", true},
         {"A <> ''", "   ", false}});
}

TEST(filter_text, patterns) {
  check({{"A LIKE 'DH%'", "DH001", true},
         {"A LIKE 'DH%'", "DH", true},
         {"A LIKE 'DH%'", "XDH", false},
         {"A LIKE '%1'", "DH001", true},
         {"A LIKE '%1'", "DH002", false},
         {"A LIKE '%H0%'", "DH001", true},
         {"A LIKE 'D_0_1'", "DH001", true},
         {"A LIKE 'D_'", "DH001", false},
         {"A LIKE 'dh%'", "DH001", false},
         {"A LIKE '%'", "X", true},
         {"A LIKE '_%_'", "X", false},
         {"A LIKE '_%_'", "XY", true},
         {"A LIKE '%a%b%c%'", "xxaxbxxc", true},
         {"A LIKE '%ab%ab'", "abab", true},
         {"A LIKE '%ab%ab'", "ab", false},
         {"A LIKE 'DH.*'", "DH001", false},
         {"A LIKE ''", "X", false},
         {"A NOT LIKE 'DH%'", "RC001", true},
         {"A NOT LIKE 'DH%'", "DH001", false},
         {"A LIKE '1%'", "12.5", true},
         {"A + 1 LIKE '13%'", "12.5", true},
         {"'DH001' LIKE 'DH%'", "", true}});
}

TEST(filter_text, that_reads_as_a_number_is_one_for_calculating_and_a_text_beside_texts) {
  const auto filter = make_filter();
  const auto values = values_of(filter);
  SHORT result = 0;
  const auto test = [&](const char* expression, const char* value) {
    EXPECT_EQ(S_OK, set_expression(*filter.get(), expression));
    EXPECT_EQ(S_OK, values->SetText(0, ovfile::text(std::string_view(value)).get()));
    EXPECT_EQ(S_OK, values->Test(&result));
    EXPECT_EQ(result, evaluate(*filter.get(), value));
    return result == 1;
  };
  EXPECT_TRUE(test("A = 12", "0012"));
  EXPECT_TRUE(test("A + 1 = 13", " 12 "));
  EXPECT_TRUE(test("A = '0012'", "0012"));
  EXPECT_FALSE(test("A = '12'", "0012"));
  EXPECT_TRUE(test("A", "1"));
  EXPECT_FALSE(test("A", "0.0"));
  EXPECT_FALSE(test("A", "X"));
  EXPECT_TRUE(test("A = 150", "+1.5e2"));
  EXPECT_FALSE(test("A = 1", "1x"));
  EXPECT_FALSE(test("A <> 1", "1x")) << "a text that is no number is not compared with one";
  EXPECT_TRUE(test("A + 1 IS ABSENT", "X"));
  EXPECT_FALSE(test("A IS ABSENT", "1e400"));
  EXPECT_TRUE(test("A + 0 IS ABSENT", "1e400"));
  EXPECT_TRUE(test("A = 0", "1e-400"));
  EXPECT_TRUE(test("A > 1", "INF"));
  EXPECT_FALSE(test("A > 1", "inf"));
  EXPECT_FALSE(test("A > 1", "0x10"));
  EXPECT_FALSE(test("A > 1", "1.500,5"));
  EXPECT_TRUE(test("A = 16", std::string(200, '0').append("16.").append(200, '0').c_str()));
}

TEST(filter_text, of_a_number_beside_texts) {
  check({{"A = '1.5'", "1.5", true},
         {"A = '1.50'", "1.5", false},
         {"A < '5'", "10", true},
         {"A = '-3'", "-3", true},
         {"A LIKE '%.25'", "0.25", true},
         {"A = B", "5,X", false},
         {"A < B", "5,X", true},
         {"A < B", "9,10", true}});
  const auto filter = make_filter();
  const auto values = values_of(filter);
  const auto text_of = [&](double number, const char* expected) {
    SHORT result = 0;
    EXPECT_EQ(S_OK, set_expression(*filter.get(), "A = '" + std::string(expected) + "'"));
    EXPECT_EQ(S_OK, values->SetNumber(0, number));
    EXPECT_EQ(S_OK, values->Test(&result));
    EXPECT_EQ(1, result) << expected;
  };
  text_of(0.1, "0.1");
  text_of(-0.0, "0");
  text_of(100000, "100000");
  text_of(1e15, "1E+15");
  text_of(1e-5, "1E-05");
  text_of(1.0 / 3, "0.333333333333333");
  text_of(-1e300 * 1e300, "-INF");
}

TEST(filter_text, does_not_pass) {
  check({{"A", "X", false},
         {"'X'", "", false},
         {"'1'", "", false},
         {"if(A, '1', '2')", "1", false},
         {"A OR B", "X,1", true},
         {"NOT A", "X", true}});
}

}  // namespace
}  // namespace ovtest
