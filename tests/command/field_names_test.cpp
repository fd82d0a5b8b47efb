#include "command/field_names.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using names = std::vector<std::string>;

struct made_names {
  names fields;
  names notes;
};

made_names make(const names& headers, const names& taken = {}, std::size_t longest = 8) {
  made_names made;
  made.fields = command::make_field_names(headers, taken, longest, made.notes);
  return made;
}

TEST(field_names, good_names_stay) {
  const made_names made =
      make({"BHID", "AU_PPM", "au_ppm", "X.Y", "X@1", "__in", "12345678", "\xC3\xA9t\xC3\xA9"});
  EXPECT_EQ(made.fields,
            (names{"BHID", "AU_PPM", "au_ppm", "X.Y", "X@1", "__in", "12345678", "\xC3\xA9t\xC3\xA9"}));
  EXPECT_EQ(made.notes, names{});
}

TEST(field_names, long_names_are_cut) {
  const made_names made = make({"Au_Lagrange"});
  EXPECT_EQ(made.fields, (names{"Au_Lagra"}));
  EXPECT_EQ(made.notes, (names{"column 1 \"Au_Lagrange\" becomes Au_Lagra"}));
}

TEST(field_names, cut_names_differ) {
  EXPECT_EQ(make({"Estimate_1", "Estimate_2", "Estimate_3"}).fields,
            (names{"Estimate", "Estimat2", "Estimat3"}));
}

TEST(field_names, a_good_name_keeps_its_place_before_a_cut_one) {
  EXPECT_EQ(make({"Au_Lagrange", "Au_Lagra"}).fields, (names{"Au_Lagr2", "Au_Lagra"}));
}

TEST(field_names, the_length_is_what_the_library_allows) {
  EXPECT_EQ(make({"Au_Lagrange"}, {}, 24).fields, (names{"Au_Lagrange"}));
  EXPECT_EQ(make({"\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9"}).fields,
            (names{"\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9"}));
}

TEST(field_names, repeated_names_get_a_number) {
  const made_names made = make({"CU", "CU", "CU", "ABCDEFGH", "ABCDEFGH"});
  EXPECT_EQ(made.fields, (names{"CU", "CU_2", "CU_3", "ABCDEFGH", "ABCDEFG2"}));
  EXPECT_EQ(made.notes, (names{"column 2 \"CU\", a repeated name, becomes CU_2",
                               "column 3 \"CU\", a repeated name, becomes CU_3",
                               "column 5 \"ABCDEFGH\", a repeated name, becomes ABCDEFG2"}));
}

TEST(field_names, many_repeats_stay_within_the_length) {
  const made_names made = make(names(12, "ABCDEFGH"));
  EXPECT_EQ(made.fields[8], "ABCDEFG9");
  EXPECT_EQ(made.fields[9], "ABCDEF10");
  EXPECT_EQ(made.fields[11], "ABCDEF12");
}

TEST(field_names, many_equal_and_many_cut_names_take_no_time) {
  const made_names equal = make(names(20'000, "GRADE"));
  EXPECT_EQ(equal.fields.back(), "GR_20000");
  names cut(20'000);
  for (std::size_t i = 0; i < cut.size(); ++i) cut[i] = "Estimate_" + std::to_string(i);
  EXPECT_EQ(make(cut).fields.back(), "Est20000");
}

TEST(field_names, empty_names_are_made_up) {
  const made_names made = make({"A", "", "  ", "COL2"});
  EXPECT_EQ(made.fields, (names{"A", "COL2_2", "COL3", "COL2"}));
  EXPECT_EQ(made.notes,
            (names{"column 2 has no name and becomes COL2_2", "column 3 has no name and becomes COL3"}));
}

TEST(field_names, forbidden_characters_become_underscores) {
  EXPECT_EQ(make({"Au (g)", "a,b", "x:y", ".n", "@n", "q?", "a=b", "a*b&c", "!", "a\tb"}).fields,
            (names{"Au__g_", "a_b", "x_y", "_n", "_n_2", "q_", "a_b_2", "a_b_c", "_", "a_b_3"}));
}

TEST(field_names, blanks_around_a_name_go) {
  EXPECT_EQ(make({" FROM", "TO "}).fields, (names{"FROM", "TO"}));
}

TEST(field_names, characters_that_cannot_be_stored_become_underscores) {
  EXPECT_EQ(make({"\xE2\x82\xAC", "\xCE\xB1x", "\xF0\x9F\x98\x80"}).fields,
            (names{"\xE2\x82\xAC", "_x", "_"}));
}

TEST(field_names, names_that_are_taken_are_left_alone) {
  EXPECT_EQ(make({"XC"}, {"XC"}).fields, (names{"XC_2"}));
}

TEST(field_names, problems_are_told_in_words) {
  EXPECT_EQ(command::name_problem("CU", 8), "");
  EXPECT_EQ(command::name_problem("", 8), "the name is empty");
  EXPECT_EQ(command::name_problem("ABCDEFGHI", 8), "the name is longer than 8 characters");
  EXPECT_EQ(command::name_problem(".A", 8), "a name may not begin with . or @");
  EXPECT_EQ(command::name_problem("A B", 8),
            "a name may not hold blanks, control characters or any of ,!:*&=()?");
  EXPECT_EQ(command::name_problem("A\tB", 8),
            "a name may not hold blanks, control characters or any of ,!:*&=()?");
  EXPECT_EQ(command::name_problem("\xCE\xA9", 8), "the character U+03A9 is not in Windows-1252");
  EXPECT_EQ(command::name_problem("A\xF0\x9F\x98\x80", 8), "the character U+1F600 is not in Windows-1252");
}

TEST(field_names, names_near_another_are_the_nearest_ones) {
  const names there = {"FROM", "FROM_2", "Au", "au", "DENSITY", "X", "Y"};
  EXPECT_EQ(command::names_near(there, "from"), names{"FROM"});
  EXPECT_EQ(command::names_near(there, "FRM"), names{"FROM"});
  EXPECT_EQ(command::names_near({"head", "heap2"}, "haed"), names{"head"});
  EXPECT_EQ(command::names_near(there, "FROMS"), names{"FROM"});
  EXPECT_EQ(command::names_near(there, "FROM2"), (names{"FROM", "FROM_2"}));
  EXPECT_EQ(command::names_near(there, "DNESITY"), names{"DENSITY"});
  EXPECT_EQ(command::names_near(there, "AU"), (names{"Au", "au"}));
  EXPECT_EQ(command::names_near(there, "x"), names{"X"});
  EXPECT_EQ(command::names_near(there, "Z"), names{});
  EXPECT_EQ(command::names_near(there, "DENTIST"), names{});
}

}  // namespace
