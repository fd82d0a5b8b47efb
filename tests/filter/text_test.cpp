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

TEST(filter_text, tabs_are_blanks_too_and_nothing_else_is) {
  check({{"A = 'X'", "X \t ", true},
         {"A = 'X\t'", "X", true},
         {"A IS ABSENT", "\t \t", true},
         {"A IS NOT ABSENT", "\xC2\xA0", true},
         {"A IS NOT ABSENT", "\n", true},
         {"A LIKE '_'", "X\t", true}});
  const auto filter = make_filter();
  const auto values = values_of(filter);
  const auto passes_text = [&](const char* expression, const char* value) {
    SHORT result = 0;
    EXPECT_EQ(S_OK, set_expression(*filter.get(), expression));
    EXPECT_EQ(S_OK, values->SetText(0, ovfile::text(std::string_view(value)).get()));
    EXPECT_EQ(S_OK, values->Test(&result));
    EXPECT_EQ(result, evaluate(*filter.get(), value)) << expression;
    return result == 1;
  };
  EXPECT_TRUE(passes_text("A = 12", "\t 12\t "));
  EXPECT_TRUE(passes_text("A IS ABSENT", " \t"));
  EXPECT_FALSE(passes_text("A = 12", "12\n"));
  EXPECT_FALSE(passes_text("A = 12", "12\xC2\xA0"));
  EXPECT_TRUE(passes_text("A IS NOT ABSENT", "\v"));
}

TEST(filter_text, patterns) {
  check({{"A LIKE 'DH%'", "DH001", true},        {"A LIKE 'DH%'", "DH", true},
         {"A LIKE 'DH%'", "XDH", false},         {"A LIKE '%1'", "DH001", true},
         {"A LIKE '%1'", "DH002", false},        {"A LIKE '%H0%'", "DH001", true},
         {"A LIKE 'D_0_1'", "DH001", true},      {"A LIKE 'D_'", "DH001", false},
         {"A LIKE 'dh%'", "DH001", false},       {"A LIKE '%'", "X", true},
         {"A LIKE '_%_'", "X", false},           {"A LIKE '_%_'", "XY", true},
         {"A LIKE '%a%b%c%'", "xxaxbxxc", true}, {"A LIKE '%ab%ab'", "abab", true},
         {"A LIKE '%ab%ab'", "ab", false},       {"A LIKE 'DH.*'", "DH001", false},
         {"A NOT LIKE ''", "X", true},           {"A NOT LIKE ''", "  ", false},
         {"A NOT LIKE 'DH%'", "RC001", true},    {"A NOT LIKE 'DH%'", "DH001", false},
         {"A LIKE '1%'", "12.5", true},          {"A + 1 LIKE '13%'", "12.5", true},
         {"'DH001' LIKE 'DH%'", "", true}});
}

TEST(filter_text, patterns_with_an_escape_character) {
  check({{"A LIKE 'RC!_1' ESCAPE '!'", "RC_1", true},
         {"A LIKE 'RC!_1' ESCAPE '!'", "RC01", false},
         {"A LIKE 'RC!_1'", "RC!01", true},
         {"A LIKE '50!%' escape '!'", "50%", true},
         {"A LIKE '50!%' ESCAPE '!'", "500", false},
         {"A LIKE '%!%%' ESCAPE '!'", "a % of it", true},
         {"A LIKE '%!%%' ESCAPE '!'", "all of it", false},
         {"A LIKE '!!%' ESCAPE '!'", "!x", true},
         {"A LIKE '!!%' ESCAPE '!'", "x!", false},
         {"A LIKE '%%' ESCAPE '%'", "%", true},
         {"A LIKE '%%' ESCAPE '%'", "X", false},
         {"A LIKE '\\_' ESCAPE '\\'", "_", true},
         {"A NOT LIKE 'RC!_1' ESCAPE '!'", "RC01", true},
         {"A LIKE 'x%' ESCAPE '!' AND B = 1", "xy,1", true}});
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
  EXPECT_FALSE(test("A > 1", "inf"));
  EXPECT_FALSE(test("A > 1", "NAN"));
  EXPECT_FALSE(test("A > 1", "0x10"));
  EXPECT_FALSE(test("A > 1", "1.500,5"));
  EXPECT_TRUE(test("A = 16", std::string(200, '0').append("16.").append(200, '0').c_str()));
}

TEST(filter_text, that_is_a_word_for_infinite_is_a_number_in_a_list_alone) {
  const auto filter = make_filter();
  const auto values = values_of(filter);
  for (const char* word : {"INF", "-INF", "NAN"}) {
    SHORT result = 1;
    ASSERT_EQ(S_OK, set_expression(*filter.get(), "abs(A) > 5 OR A > 5 OR A < 5 OR A + 1 IS NOT ABSENT"));
    ASSERT_EQ(S_OK, values->SetText(0, ovfile::text(std::string_view(word)).get()));
    EXPECT_EQ(S_OK, values->Test(&result));
    EXPECT_EQ(0, result) << word;
    ASSERT_EQ(S_OK, set_expression(*filter.get(), std::string("A = '") + word + "'"));
    ASSERT_EQ(S_OK, values->SetText(0, ovfile::text(std::string_view(word)).get()));
    EXPECT_EQ(S_OK, values->Test(&result));
    EXPECT_EQ(1, result) << word;
    EXPECT_EQ(1, evaluate(*filter.get(), word));
  }
  ASSERT_EQ(S_OK, set_expression(*filter.get(), "A > 5"));
  EXPECT_EQ(1, evaluate(*filter.get(), "INF"));
  EXPECT_EQ(0, evaluate(*filter.get(), "-INF"));
  EXPECT_EQ(0, evaluate(*filter.get(), "NAN"));
}

TEST(filter_text, of_two_fields_is_compared_as_text_where_both_are_known_to_be_texts) {
  const auto filter = make_filter();
  const auto values = values_of(filter);
  const auto passes_texts = [&](const char* expression, const char* left, const char* right) {
    SHORT result = 7;
    EXPECT_EQ(S_OK, set_expression(*filter.get(), expression));
    EXPECT_EQ(S_OK, values->SetText(0, ovfile::text(std::string_view(left)).get()));
    EXPECT_EQ(S_OK, values->SetText(1, ovfile::text(std::string_view(right)).get()));
    EXPECT_EQ(S_OK, values->Test(&result));
    return result == 1;
  };
  EXPECT_FALSE(passes_texts("A = B", "0012", "12"));
  EXPECT_TRUE(passes_texts("A <> B", "0012", "12"));
  EXPECT_FALSE(passes_texts("A < B", "9", "10"));
  EXPECT_TRUE(passes_texts("A = B", "12", "12 "));
  EXPECT_FALSE(passes_texts("A IN (B)", "1.0", "1"));
  EXPECT_FALSE(passes_texts("A NOT BETWEEN B AND B", "12", "12"));
  // One of them known to be a number is enough, and so is a calculation.
  EXPECT_TRUE(passes_texts("A + 0 = B", "0012", "12"));
  SHORT result = 0;
  ASSERT_EQ(S_OK, set_expression(*filter.get(), "A = B"));
  ASSERT_EQ(S_OK, values->SetText(0, ovfile::text(std::string_view("0012")).get()));
  ASSERT_EQ(S_OK, values->SetNumber(1, 12));
  EXPECT_EQ(S_OK, values->Test(&result));
  EXPECT_EQ(1, result);
  // A list does not tell.
  EXPECT_EQ(1, evaluate(*filter.get(), "0012,12"));
  EXPECT_EQ(0, evaluate(*filter.get(), "0012,X"));
}

TEST(filter_text, in_quotes_stays_one_when_a_condition_chooses_it) {
  check({{"if(A, '5', B) = C", "1,0,5", true},
         {"if(A, '5', B) = C", "0,5,5", true},
         {"if(A, '5.0', B) = C", "1,0,5", false}});
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
         {"if(A, 'X', 2)", "1", false},
         {"if(A, 'X', 2)", "0", true},
         {"A OR B", "X,1", true},
         {"NOT A", "X", true}});
}

}  // namespace
}  // namespace ovtest
