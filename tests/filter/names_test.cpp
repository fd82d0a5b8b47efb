// Names of fields.
#include "filter/filter_test.h"

namespace ovtest {
namespace {

std::vector<std::string> names_in(std::string_view expression) {
  const auto filter = make_filter();
  EXPECT_EQ("", complaint_about(expression));
  EXPECT_EQ(S_OK, set_expression(*filter.get(), expression));
  return variables(*filter.get());
}

using names = std::vector<std::string>;

TEST(filter_names, are_numbered_as_they_first_appear) {
  EXPECT_EQ((names{"CU", "AU", "ROCK"}), names_in("CU > 1 AND AU > CU AND ROCK IN ('A', 'B') AND AU < 9"));
  EXPECT_EQ(names{}, names_in("1 = 1"));
  EXPECT_EQ((names{"A", "B", "C"}), names_in("if(A, B, C)"));
}

TEST(filter_names, differ_by_case) { EXPECT_EQ((names{"AU", "au"}), names_in("AU > au AND AU > 1")); }

TEST(filter_names, of_the_usual_characters) {
  EXPECT_EQ((names{"AU_PPM", "X.Y", "X@1", "FE%", "#2", "$", "_1"}), names_in("AU_PPM+X.Y+X@1+FE%+#2+$+_1"));
  EXPECT_EQ((names{"K\xC3\xB6rn", "\xC3\x85"}), names_in("K\xC3\xB6rn > \xC3\x85"));
}

TEST(filter_names, of_any_characters_stand_in_brackets) {
  EXPECT_EQ((names{"A-B", "AND", "1ST", "odd]name", "A+B", "'"}),
            names_in("[A-B] + [AND] + [1ST] + [odd]]name] + [A+B] > [']"));
  EXPECT_EQ(names{"AU"}, names_in("[AU] > 1 AND AU < 5"));
  EXPECT_TRUE(passes("[abs] = 1", "1"));
  EXPECT_EQ((names{"NULL", "true", "A\u2265", "X\u00B2"}),
            names_in("[NULL] + [true] + [A\u2265] > [X\u00B2]"));
}

TEST(filter_names, stand_behind_a_byte_order_mark) {
  EXPECT_EQ(names{"AU"}, names_in("\uFEFFAU > 1"));
  EXPECT_EQ("a value is missing at position 6", complaint_about("\uFEFFAU >"));
}

TEST(filter_names, that_begin_like_words) {
  EXPECT_EQ((names{"ANDY", "ORE", "NOTE", "INN", "ISO", "LIKELY"}),
            names_in("ANDY AND ORE AND NOTE AND INN AND ISO AND LIKELY"));
  EXPECT_EQ((names{"NULLS", "TRUEST", "ESCAPE"}),
            names_in("NULLS > TRUEST AND ESCAPE LIKE 'x!%' ESCAPE '!'"));
}

}  // namespace
}  // namespace ovtest
