// Bad expressions: what is said, and where.
#include "filter/filter_test.h"

namespace ovtest {
namespace {

TEST(filter_errors, tell_the_position) {
  const std::pair<const char*, const char*> cases[] = {
      {"AU > ", "a value is missing at position 6"},
      {"AU >= AND B", "AND is not expected at position 7"},
      {"AU 5", "5 is not expected at position 4"},
      {"(AU > 1", "')' is missing at position 8"},
      {"AU > 1)", ") is not expected at position 7"},
      {"AU = 'ORE", "a text without its closing quote at position 6"},
      {"AU = \"ORE", "a text without its closing quote at position 6"},
      {"[AU = 1", "a name without its closing bracket at position 1"},
      {"[] = 1", "an empty name at position 1"},
      {"AU ? 1", "unknown character ? at position 4"},
      {"AU & B", "& alone is no operator, write && or AND at position 4"},
      {"AU | B", "| alone is no operator, write || or OR at position 4"},
      {"A = \xE2\x80\x98X\xE2\x80\x99", "texts stand in plain quotes, ' or \" at position 5"},
      {"foo(AU)", "there is no function of this name at position 1"},
      {"1 + foo (AU)", "there is no function of this name at position 5"},
      {"abs()", ") is not expected at position 5"},
      {"abs(1, 2)", "')' is missing at position 6"},
      {"mod(1)", "',' and another value is missing at position 6"},
      {"min(1)", "',' and another value is missing at position 6"},
      {"if(A, 1)", "',' is missing at position 8"},
      {"if(A, 1, 2, 3)", "')' is missing at position 11"},
      {"A IN 1", "'(' is missing at position 6"},
      {"A IN ()", ") is not expected at position 7"},
      {"A IN (1, )", ") is not expected at position 10"},
      {"A IN (1", "')' is missing at position 8"},
      {"A BETWEEN 1", "AND is missing at position 12"},
      {"A BETWEEN 1 OR 2", "AND is missing at position 13"},
      {"A NOT 1", "IN, BETWEEN or LIKE is missing at position 7"},
      {"A LIKE B", "the text of a pattern is missing at position 8"},
      {"A IS 1", "ABSENT is missing at position 6"},
      {"A = ABSENT", "absence is asked for by IS ABSENT at position 5"},
      {"A < B < C", "comparisons do not follow each other without AND, OR or parentheses at position 7"},
      {"A = 1 IS ABSENT",
       "comparisons do not follow each other without AND, OR or parentheses at position 7"},
      {"1 + NOT A", "NOT is not expected at position 5"},
      {"1ST = 2",
       "a number runs into a name (a name that begins with a digit goes in brackets) at position 1"},
      {"A > 1.2.3",
       "a number runs into a name (a name that begins with a digit goes in brackets) at position 5"},
      {"A > 1,5", ", is not expected at position 6"},
      {"A > 1e400", "a number that is too large at position 5"},
      {"A > 5 'x", "a text without its closing quote at position 7"},
      {"'x' + 1", "a text stands where a number is needed at position 1"},
      {"1 * 'x'", "a text stands where a number is needed at position 5"},
      {"-'x'", "a text stands where a number is needed at position 2"},
      {"abs('x')", "a text stands where a number is needed at position 5"},
      {"'x' AND A", "a text stands where a condition is needed at position 1"},
      {"A OR 'x'", "a text stands where a condition is needed at position 6"},
      {"NOT 'x'", "a text stands where a condition is needed at position 5"},
      {"A + 1 = 'x'", "a number is compared with a text at position 7"},
      {"1 = 'x'", "a number is compared with a text at position 3"},
      {"A + 1 IN (1, 'x')", "a number is compared with a text at position 14"},
      {"A + 1 IN ('x', 1)", "a number is compared with a text at position 11"},
      {"'x' NOT IN ('y', 2)", "a number is compared with a text at position 18"},
      {"A + 1 BETWEEN 'x' AND 2", "a number is compared with a text at position 15"},
      {"A + 1 BETWEEN 2 AND 'x'", "a number is compared with a text at position 21"},
      {"A = ''", "nothing equals an empty text, absence is asked for by IS ABSENT at position 3"},
      {"A IN ('X', '  ')", "nothing equals an empty text, absence is asked for by IS ABSENT at position 12"},
      {"A LIKE ''", "nothing is like an empty text, absence is asked for by IS ABSENT at position 8"},
      {"A LIKE ' \t'", "nothing is like an empty text, absence is asked for by IS ABSENT at position 8"},
      {"A LIKE '%' ESCAPE", "the text of an escape character is missing at position 18"},
      {"A LIKE '%' ESCAPE B", "the text of an escape character is missing at position 19"},
      {"A LIKE '%' ESCAPE ''", "an escape character is one character other than a blank at position 19"},
      {"A LIKE '%' ESCAPE ' '", "an escape character is one character other than a blank at position 19"},
      {"A LIKE '%' ESCAPE '!!'", "an escape character is one character other than a blank at position 19"},
      {"A LIKE 'x!y' ESCAPE '!'", "an escape character stands before %, _ or itself alone at position 8"},
      {"A LIKE 'x! ' ESCAPE '!'", "an escape character stands before %, _ or itself alone at position 8"},
      {"A LIKE 'x' [ESCAPE] '!'", "[ESCAPE] is not expected at position 12"},
      {"()", ") is not expected at position 2"},
      {"\n\nA >", "a value is missing at position 6"},
      {"A = AND_A_VERY_LONG_NAME OR_ANOTHER_NAME_WHICH_IS_LONG",
       "OR_ANOTHER_NAME_WHICH_IS... is not expected at position 26"},
  };
  for (const auto& [expression, expected] : cases)
    EXPECT_EQ(expected, complaint_about(expression)) << expression;
}

TEST(filter_errors, of_texts_that_are_no_conditions) {
  EXPECT_EQ("a text stands where a condition is needed at position 1", complaint_about("'ORE'"));
  EXPECT_EQ("a text stands where a condition is needed at position 1", complaint_about("'1'"));
  EXPECT_EQ("a text stands where a condition is needed at position 3", complaint_about("( 'ORE')"));
  EXPECT_EQ("a text stands where a condition is needed at position 1", complaint_about("if(A>1,'5','6')"));
  EXPECT_EQ("a text stands where a condition is needed at position 8",
            complaint_about("A AND (if(A>1,'5','6'))"));
  EXPECT_EQ("", complaint_about("if(A>1,'5',6)"));
}

TEST(filter_errors, of_signs_that_look_like_others) {
  const std::pair<const char*, const char*> cases[] = {
      {"AU \u2265 1", "write >= at position 4"},
      {"AU\u22651", "write >= at position 3"},
      {"AU \u2264 1", "write <= at position 4"},
      {"AU \u2260 1", "write <> at position 4"},
      {"AU \u2212 1 > 0", "write - at position 4"},
      {"AU > \u20131", "write - at position 6"},
      {"AU \u00D7 2 > 0", "write * at position 4"},
      {"AU \u00F7 2 > 0", "write / at position 4"},
      {"A \u2227 B", "write AND at position 3"},
      {"\u00ACA", "write NOT at position 1"},
      {"X\u00B2 > 1", "write ^ for a power, or the whole name in brackets at position 2"},
      {"A = \u00ABX\u00BB", "texts stand in plain quotes, ' or \" at position 5"},
      {"A\u3000= 1", "write a plain blank at position 2"},
      {"A\u2009= 1", "write a plain blank at position 2"},
      {"A \uFF1E 1", "write > at position 3"},
      {"A \uFF0B 1", "write + at position 3"},
      {"A \uFEFF= 1", "a byte order mark stands at the beginning alone at position 3"},
      {"A \u2026 1", "unknown character \u2026 at position 3"},
      {"A \u2192 1", "unknown character \u2192 at position 3"},
  };
  for (const auto& [expression, expected] : cases)
    EXPECT_EQ(expected, complaint_about(expression)) << expression;
}

TEST(filter_errors, of_words_of_other_languages) {
  const std::string no_null = "there is no NULL, write IS ABSENT (a field of this name goes in brackets)";
  EXPECT_EQ(no_null + " at position 5", complaint_about("A = NULL"));
  EXPECT_EQ(no_null + " at position 6", complaint_about("A <> Null"));
  EXPECT_EQ(no_null + " at position 6", complaint_about("A IS NULL"));
  EXPECT_EQ(no_null + " at position 10", complaint_about("A IS NOT null"));
  EXPECT_EQ(
      "there is no TRUE, write 1 or the condition alone (a field of this name goes in brackets) at "
      "position 5",
      complaint_about("A = TRUE"));
  EXPECT_EQ("there is no FALSE, write 0 or NOT (a field of this name goes in brackets) at position 5",
            complaint_about("A = false"));
}

TEST(filter_errors, of_characters_that_cannot_be_seen) {
  EXPECT_EQ("unknown character at position 3", complaint_about(std::string_view("A \0 1", 5)));
  EXPECT_EQ("'a b' is not expected at position 3", complaint_about(std::string_view("A 'a\0b'", 7)));
}

TEST(filter_errors, leave_nothing_that_passes_until_the_next_expression) {
  const auto filter = make_filter();
  const auto values = values_of(filter);
  ASSERT_EQ(S_OK, set_expression(*filter.get(), "A > 1"));
  EXPECT_EQ(1, evaluate(*filter.get(), "2"));
  EXPECT_EQ(E_FAIL, set_expression(*filter.get(), "A >"));
  EXPECT_TRUE(variables(*filter.get()).empty());
  EXPECT_EQ(0, evaluate(*filter.get(), "2"));
  SHORT result = -1;
  EXPECT_EQ(S_OK, values->Test(&result));
  EXPECT_EQ(0, result);
  EXPECT_EQ(E_INVALIDARG, values->SetNumber(0, 2));
  ASSERT_EQ(S_OK, set_expression(*filter.get(), "A > 1"));
  EXPECT_EQ(1, evaluate(*filter.get(), "2"));
}

TEST(filter_errors, carry_the_interface) {
  const auto filter = make_filter();
  ASSERT_EQ(E_FAIL, set_expression(*filter.get(), "("));
  ovfile::pointer<IErrorInfo> info;
  ASSERT_EQ(S_OK, GetErrorInfo(0, info.out()));
  GUID id{};
  EXPECT_EQ(S_OK, info->GetGUID(&id));
  EXPECT_TRUE(id == IID_IOvFilter);
}

TEST(filter_errors, an_empty_expression_is_none_and_everything_passes) {
  const auto filter = make_filter();
  EXPECT_EQ(1, evaluate(*filter.get(), ""));
  for (const char* expression : {"", "   ", "\t\n", "\uFEFF", "\uFEFF "}) {
    EXPECT_EQ(E_FAIL, set_expression(*filter.get(), ")"));
    EXPECT_EQ(S_OK, set_expression(*filter.get(), expression));
    EXPECT_TRUE(variables(*filter.get()).empty());
    EXPECT_EQ(1, evaluate(*filter.get(), ""));
  }
  EXPECT_EQ(S_OK, filter->SetExpression(nullptr));
  EXPECT_EQ(1, evaluate(*filter.get(), ""));
}

}  // namespace
}  // namespace ovtest
