// The two roads on which values come.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "filter/filter_test.h"

namespace ovtest {
namespace {

class filter_values : public testing::Test {
 protected:
  void expression(std::string_view text) { ASSERT_EQ(S_OK, set_expression(*filter_.get(), text)); }
  SHORT test() const {
    SHORT result = -1;
    EXPECT_EQ(S_OK, values_->Test(&result));
    return result;
  }

  ovfile::pointer<IOvFilter> filter_ = make_filter();
  ovfile::pointer<IOvFilterValues> values_ = values_of(filter_);
};

TEST_F(filter_values, in_a_list_stand_in_the_order_of_the_variables) {
  expression("A = 1.5 AND B IS ABSENT AND C = 'ABC'");
  EXPECT_EQ(1, evaluate(*filter_.get(), "1.5,-,ABC"));
  EXPECT_EQ(1, evaluate(*filter_.get(), "1.5,,ABC"));
  EXPECT_EQ(0, evaluate(*filter_.get(), "-,1.5,ABC"));
}

TEST_F(filter_values, of_unknown_fields_leave_their_position_empty) {
  expression("A IS ABSENT AND B = 2 AND C IS ABSENT");
  EXPECT_EQ(1, evaluate(*filter_.get(), ",2,"));
  expression("A IS ABSENT AND B IS ABSENT AND C = 3");
  EXPECT_EQ(1, evaluate(*filter_.get(), ",,3"));
}

TEST_F(filter_values, missing_at_the_end_of_a_list_are_absent) {
  expression("A = 1 AND B IS ABSENT AND C IS ABSENT");
  EXPECT_EQ(1, evaluate(*filter_.get(), "1"));
  EXPECT_EQ(1, evaluate(*filter_.get(), "1,"));
  expression("A IS ABSENT");
  EXPECT_EQ(1, evaluate(*filter_.get(), ""));
  SHORT result = 0;
  EXPECT_EQ(S_OK, filter_->Evaluate(nullptr, &result));
  EXPECT_EQ(1, result);
}

TEST_F(filter_values, the_last_one_takes_the_commas_that_are_left) {
  expression("A = 1 AND B = 'x,y,z'");
  EXPECT_EQ(1, evaluate(*filter_.get(), "1,x,y,z"));
  expression("A LIKE '%,%'");
  EXPECT_EQ(1, evaluate(*filter_.get(), "x,y"));
}

TEST_F(filter_values, of_the_list_set_last_count) {
  expression("A > 1");
  EXPECT_EQ(S_OK, filter_->SetValues(ovfile::text(std::string_view("2")).get()));
  EXPECT_EQ(1, test());
  EXPECT_EQ(0, evaluate(*filter_.get(), "0"));
  EXPECT_EQ(0, test());
  EXPECT_EQ(S_OK, values_->SetNumber(0, 5));
  EXPECT_EQ(1, test());
  EXPECT_EQ(0, evaluate(*filter_.get(), "0")) << "the same list as before, but the value has changed";
}

TEST_F(filter_values, begin_absent_and_stay_until_they_are_set_again) {
  expression("A IS ABSENT AND B IS ABSENT");
  EXPECT_EQ(1, test());
  expression("A = 1 AND B = 'X'");
  EXPECT_EQ(0, test());
  EXPECT_EQ(S_OK, values_->SetNumber(0, 1));
  EXPECT_EQ(S_OK, values_->SetText(1, ovfile::text(std::string_view("X")).get()));
  EXPECT_EQ(1, test());
  EXPECT_EQ(1, test());
  EXPECT_EQ(S_OK, values_->SetAbsent(0));
  EXPECT_EQ(0, test());
  EXPECT_EQ(S_OK, values_->SetNumber(0, 1));
  EXPECT_EQ(1, test());
  expression("A = 1 AND B = 'X'");
  EXPECT_EQ(0, test()) << "a new expression has no values yet";
}

TEST_F(filter_values, texts_one_by_one_are_taken_as_they_are) {
  expression("A = 'x,y' AND B = '-'");
  EXPECT_EQ(S_OK, values_->SetText(0, ovfile::text(std::string_view("x,y")).get()));
  EXPECT_EQ(S_OK, values_->SetText(1, ovfile::text(std::string_view("-")).get()));
  EXPECT_EQ(1, test());
  expression("A IS ABSENT");
  for (const char* blank : {"", "   "}) {
    EXPECT_EQ(S_OK, values_->SetText(0, ovfile::text(std::string_view("X")).get()));
    EXPECT_EQ(0, test());
    EXPECT_EQ(S_OK, values_->SetText(0, ovfile::text(std::string_view(blank)).get()));
    EXPECT_EQ(1, test());
  }
  EXPECT_EQ(S_OK, values_->SetText(0, nullptr));
  EXPECT_EQ(1, test());
}

TEST_F(filter_values, texts_are_copied) {
  expression("A = 'one' AND B = 'two, which is too long for a short text'");
  {
    const ovfile::text one(std::string_view("one"));
    const ovfile::text two(std::string_view("two, which is too long for a short text"));
    EXPECT_EQ(S_OK, values_->SetText(0, one.get()));
    EXPECT_EQ(S_OK, values_->SetText(1, two.get()));
    for (std::size_t i = 0; i < 3; ++i) one.get()[i] = OLECHAR('?');
  }
  EXPECT_EQ(1, test());
}

TEST_F(filter_values, of_variables_that_are_not_there_are_refused) {
  expression("A > B");
  for (const LONG variable : {-1, 2, 1000000, -2147483647 - 1, 2147483647}) {
    EXPECT_EQ(E_INVALIDARG, values_->SetNumber(variable, 1));
    EXPECT_EQ(E_INVALIDARG, values_->SetText(variable, nullptr));
    EXPECT_EQ(E_INVALIDARG, values_->SetAbsent(variable));
    BSTR name = ovfile::text(std::string_view("x")).release();
    const BSTR given = name;
    EXPECT_EQ(E_INVALIDARG, filter_->GetVariableName(variable, &name));
    EXPECT_EQ(nullptr, name);
    SysFreeString(given);
  }
}

/// Numbers as a table hands them on, 15 digits at most, so that the text tells all of them.
std::string random_number(std::mt19937& random) {
  char text[64];
  const int digits = static_cast<int>(random() % 15) + 1;
  const double size = std::pow(10.0, static_cast<double>(random() % 30) - 15.0);
  const double value = (static_cast<double>(random()) / 4294967296.0 - 0.5) * size;
  std::snprintf(text, sizeof text, "%.*G", digits, random() % 8 == 0 ? 0.0 : value);
  std::snprintf(text, sizeof text, "%.15G", std::strtod(text, nullptr));
  return text;
}

std::string random_value(std::mt19937& random) {
  constexpr const char* texts[] = {"ORE", "WASTE", "DH001", "A", "x y", "1x", "E5", "--", "a"};
  switch (random() % 6) {
    case 0:
      return "-";
    case 1:
      return "";
    case 2:
      return texts[random() % std::size(texts)];
    default:
      return random() % 2 == 0 ? std::to_string(random() % 4) : random_number(random);
  }
}

TEST_F(filter_values, give_the_same_answer_on_both_roads) {
  constexpr const char* expressions[] = {
      "A > B OR C = 1",
      "A = B OR B < C",
      "A + B > C * 2 AND C IS NOT ABSENT",
      "A IN (1, 2, 'ORE', B) AND NOT C = 1",
      "A LIKE '%1%' OR B LIKE 'D_%' OR C LIKE '%E%'",
      "A BETWEEN B AND C",
      "A = B OR A > C",
      "if(A > 1, B, C) = 'ORE' OR min(A, B, C) < 0",
      "A NOT IN (B, C) AND abs(A) ^ 0.5 < 10",
      "A < 'B' OR B >= '1' AND C <> '0'",
      "mod(A, 2) = 1 OR int(B) = 0 OR sqrt(C) > 1",
      "A OR NOT B AND C",
  };
  std::mt19937 random(20240229);
  int passed = 0;
  int failed = 0;
  for (const char* text : expressions) {
    expression(text);
    for (int round = 0; round < 2000; ++round) {
      const std::string list = random_value(random) + ',' + random_value(random) + ',' + random_value(random);
      const SHORT listed = evaluate(*filter_.get(), list);
      set_values_one_by_one(*values_.get(), list);
      const SHORT given = test();
      ASSERT_EQ(listed, given) << text << " with " << list;
      ++(given != 0 ? passed : failed);
    }
  }
  EXPECT_GT(passed, 2000);
  EXPECT_GT(failed, 2000);
}

}  // namespace
}  // namespace ovtest
