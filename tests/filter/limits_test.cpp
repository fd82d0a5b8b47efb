// Much of everything: nesting, length, calls.
#include <chrono>

#include "filter/filter_test.h"
#include "support/peak_memory.h"
#include "support/sanitized.h"

namespace ovtest {
namespace {

std::string repeated(std::string_view text, std::size_t times) {
  std::string all;
  all.reserve(text.size() * times);
  for (std::size_t i = 0; i < times; ++i) all += text;
  return all;
}

TEST(filter_limits, nesting) {
  const auto nested = [](std::string_view open, std::string_view inner, std::string_view close,
                         std::size_t times) {
    return repeated(open, times).append(inner).append(repeated(close, times));
  };
  EXPECT_TRUE(passes(nested("(", "A = 1", ")", 100), "1"));
  EXPECT_EQ("nested more than 100 deep at position 101", complaint_about(nested("(", "A = 1", ")", 101)));
  EXPECT_TRUE(passes(nested("abs(", "A", ")", 100), "-1"));
  EXPECT_EQ("nested more than 100 deep at position 404", complaint_about(nested("abs(", "A", ")", 101)));
  EXPECT_TRUE(passes(nested("NOT ", "A", "", 100), "1"));
  EXPECT_EQ("nested more than 100 deep at position 401", complaint_about(nested("NOT ", "A", "", 101)));
  EXPECT_TRUE(passes(nested("-", "A", "", 100), "1"));
  EXPECT_EQ("nested more than 100 deep at position 101", complaint_about(nested("-", "A", "", 101)));
  EXPECT_TRUE(passes(nested("1^", "A", "", 100), "1"));
  EXPECT_EQ("nested more than 100 deep at position 202", complaint_about(nested("1^", "A", "", 101)));
  EXPECT_TRUE(passes(nested("if(A, ", "1", ", 0)", 100), "1"));
}

TEST(filter_limits, a_hundred_thousand_levels_are_refused_and_not_a_crash) {
  for (const char* open : {"(", "-", "NOT ", "!", "abs(", "1^", "if(1,", "A IN (("}) {
    EXPECT_NE(std::string::npos, complaint_about(repeated(open, 100000)).find("nested more than 100 deep"))
        << open;
  }
}

/// Each of the ways to write much takes time that grows as the text does.
TEST(filter_limits, a_megabyte_of_text) {
  const auto filter = make_filter();
  const auto start = std::chrono::steady_clock::now();
  const std::size_t megabyte = 1 << 20;
  for (const char* piece : {"A = 1 OR ", "A > 1 AND ", "1 + ", "A + ", "B * C - ", "1 OR ", "(A) + ",
                            "A IN (1, 2) OR ", "max(A, 1) + ", "-A + "}) {
    const std::string text = repeated(piece, megabyte / std::string_view(piece).size()) + "1";
    ASSERT_EQ(S_OK, set_expression(*filter.get(), text)) << piece;
    evaluate(*filter.get(), "0,0,0");
  }
  ASSERT_EQ(S_OK, set_expression(*filter.get(), "A = '" + std::string(megabyte, 'x') + "'"));
  EXPECT_EQ(1, evaluate(*filter.get(), std::string(megabyte, 'x')));
  ASSERT_EQ(S_OK, set_expression(*filter.get(), "A = '" + std::string(megabyte, '\'') + "'"));
  EXPECT_EQ(1, evaluate(*filter.get(), std::string(megabyte / 2, '\'')));
  ASSERT_EQ(S_OK, set_expression(*filter.get(), "A = " + std::string(megabyte, '0') + "1"));
  EXPECT_EQ(1, evaluate(*filter.get(), std::string(megabyte, '0') + "1"));
  ASSERT_EQ(S_OK,
            set_expression(*filter.get(), std::string(megabyte, ' ') + "A" + std::string(megabyte, ' ')));
  EXPECT_EQ(1, evaluate(*filter.get(), "1"));
  // Generous, for sanitizers and busy machines; what grows with the square takes hours.
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(120));
}

TEST(filter_limits, a_hundred_thousand_variables) {
  std::string text = "V0";
  std::string values = "1";
  for (int i = 1; i < 100000; ++i) {
    text += " + V" + std::to_string(i);
    values += ",1";
  }
  const auto filter = make_filter();
  ASSERT_EQ(S_OK, set_expression(*filter.get(), text + " = 100000"));
  LONG count = 0;
  EXPECT_EQ(S_OK, filter->GetVariableCount(&count));
  EXPECT_EQ(100000, count);
  EXPECT_EQ(1, evaluate(*filter.get(), values));
}

TEST(filter_limits, a_list_of_a_hundred_thousand) {
  std::string text = "A IN (0";
  for (int i = 1; i < 100000; ++i) text += "," + std::to_string(i);
  const auto filter = make_filter();
  ASSERT_EQ(S_OK, set_expression(*filter.get(), text + ")"));
  EXPECT_EQ(1, evaluate(*filter.get(), "99999"));
  EXPECT_EQ(0, evaluate(*filter.get(), "100000"));
}

TEST(filter_limits, patterns) {
  EXPECT_EQ("", complaint_about("A LIKE '" + std::string(1000, '%') + "'"));
  EXPECT_EQ("a pattern of more than 1000 characters at position 8",
            complaint_about("A LIKE '" + std::string(1001, 'x') + "'"));
  // The worst for a matcher: every beginning fits, and no end does.
  const std::string pattern = repeated("%a", 400) + "b";
  EXPECT_FALSE(passes("A LIKE '" + pattern + "'", std::string(50000, 'a')));
}

TEST(filter_limits, a_million_calls_take_no_memory) {
  const auto filter = make_filter();
  const auto values = values_of(filter);
  ASSERT_EQ(S_OK, set_expression(*filter.get(),
                                 "A > 1 AND (B LIKE 'x%' OR C = 'a text that is not short at all')"));
  const ovfile::text list(std::string_view("2,y,a text that is not short at all"));
  const ovfile::text other(std::string_view("2,x,a text that is even longer than the other one"));
  const ovfile::text text(std::string_view("a text that is not short at all"));
  SHORT result = 0;
  std::size_t passed = 0;
  const auto calls = [&](int count) {
    for (int i = 0; i < count; ++i) {
      filter->SetValues(i % 2 == 0 ? list.get() : other.get());
      filter->Evaluate(i % 2 == 0 ? list.get() : other.get(), &result);
      passed += result != 0 ? 1 : 0;
      values->SetNumber(0, i);
      values->SetAbsent(1);
      values->SetText(2, text.get());
      values->Test(&result);
      passed += result != 0 ? 1 : 0;
    }
  };
  calls(1000);
  const std::size_t before = peak_memory();
  calls(1000000);
  EXPECT_LT(peak_memory() - before, std::size_t{1} << 20);
  EXPECT_EQ(2002000U - 4, passed);
}

TEST(filter_limits, many_expressions_take_no_memory) {
  if (is_sanitized) {
    GTEST_SKIP() << "the sanitizer keeps freed memory for a while, and finds leaks by itself";
  }
  const auto filter = make_filter();
  const ovfile::text good(std::string_view("A > 1 AND B IN ('x', 'y', 'z') AND abs(C) < 5"));
  const ovfile::text bad(std::string_view("A > 1 AND B IN ('x', 'y', 'z' AND abs(C) < 5"));
  const auto calls = [&](int count) {
    for (int i = 0; i < count; ++i) {
      EXPECT_EQ(S_OK, filter->SetExpression(good.get()));
      EXPECT_EQ(E_FAIL, filter->SetExpression(bad.get()));
    }
  };
  calls(100);
  const std::size_t before = peak_memory();
  calls(50000);
  EXPECT_LT(peak_memory() - before, std::size_t{1} << 20);
  SetErrorInfo(0, nullptr);
}

}  // namespace
}  // namespace ovtest
