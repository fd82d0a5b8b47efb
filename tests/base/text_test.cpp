#include "base/text.h"

#include <gtest/gtest.h>

namespace {

using ovf::wide;
using ovf::wide_view;

TEST(ansi_text, ascii_is_itself_in_both_directions) {
  EXPECT_EQ(ovf::wide_from_ansi("BHID 12.5 ~"), OLESTR("BHID 12.5 ~"));
  EXPECT_EQ(ovf::ansi_from_wide(OLESTR("BHID 12.5 ~")), "BHID 12.5 ~");
}

TEST(ansi_text, empty_stays_empty) {
  EXPECT_EQ(ovf::wide_from_ansi(""), wide());
  EXPECT_EQ(ovf::ansi_from_wide(wide()), "");
}

TEST(ansi_text, a_nul_is_a_character) {
  EXPECT_EQ(ovf::wide_from_ansi(std::string_view("a\0b", 3)), wide(OLESTR("a\0b"), 3));
  EXPECT_EQ(ovf::ansi_from_wide(wide_view(OLESTR("a\0b"), 3)), std::string("a\0b", 3));
}

TEST(ansi_text, windows_1252_letters_and_signs) {
  EXPECT_EQ(ovf::wide_from_ansi("\xE9\xDF\x80\x93\x99\xFF"), OLESTR("\u00E9\u00DF\u20AC\u201C\u2122\u00FF"));
  EXPECT_EQ(ovf::ansi_from_wide(OLESTR("\u00E9\u00DF\u20AC\u201C\u2122\u00FF")), "\xE9\xDF\x80\x93\x99\xFF");
}

TEST(ansi_text, the_five_holes_stand_for_control_characters) {
  const wide controls{static_cast<OLECHAR>(0x81), static_cast<OLECHAR>(0x8D), static_cast<OLECHAR>(0x8F),
                      static_cast<OLECHAR>(0x90), static_cast<OLECHAR>(0x9D)};
  EXPECT_EQ(ovf::wide_from_ansi("\x81\x8D\x8F\x90\x9D"), controls);
  EXPECT_EQ(ovf::ansi_from_wide(controls), "\x81\x8D\x8F\x90\x9D");
}

TEST(ansi_text, every_byte_survives) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all.push_back(static_cast<char>(byte));
  const wide units = ovf::wide_from_ansi(all);
  EXPECT_EQ(units.size(), 256u);
  EXPECT_EQ(ovf::ansi_from_wide(units), all);
}

TEST(ansi_text, what_has_no_place_becomes_a_question_mark) {
  // No best fits: a full-width A is no A, a macron is not dropped from a letter.
  EXPECT_EQ(ovf::ansi_from_wide(OLESTR("x\uFF21\u0101\u0416\u2212y")), "x????y");
}

TEST(ansi_text, a_control_character_with_another_number_has_no_place) {
  const wide control{static_cast<OLECHAR>(0x80), static_cast<OLECHAR>(0x9F)};
  EXPECT_EQ(ovf::ansi_from_wide(control), "??");
}

TEST(utf8_text, characters_of_one_to_four_bytes) {
  const std::string bytes = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80";
  const wide units = OLESTR("a\u00E9\u20AC\U0001F600");
  EXPECT_EQ(units.size(), 5u);
  EXPECT_EQ(ovf::wide_from_utf8(bytes), units);
  EXPECT_EQ(ovf::utf8_from_wide(units), bytes);
}

TEST(utf8_text, lone_surrogates_become_the_replacement_character) {
  const OLECHAR high = static_cast<OLECHAR>(0xD83D);
  const OLECHAR low = static_cast<OLECHAR>(0xDE00);
  EXPECT_EQ(ovf::utf8_from_wide(wide{high}), "\xEF\xBF\xBD");
  EXPECT_EQ(ovf::utf8_from_wide(wide{low, high}), "\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(ovf::utf8_from_wide(wide{high, OLECHAR('x')}), "\xEF\xBF\xBDx");
}

struct broken_utf8 {
  const char* bytes;
  const OLECHAR* units;
};

TEST(utf8_text, each_broken_part_becomes_one_replacement_character) {
  const broken_utf8 cases[] = {
      {"\x80", OLESTR("\uFFFD")},                                // a follower alone
      {"\xC0\xAF", OLESTR("\uFFFD\uFFFD")},                      // overlong
      {"\xE0\x80\x80", OLESTR("\uFFFD\uFFFD\uFFFD")},            // overlong
      {"\xED\xA0\x80", OLESTR("\uFFFD\uFFFD\uFFFD")},            // a surrogate
      {"\xF4\x90\x80\x80", OLESTR("\uFFFD\uFFFD\uFFFD\uFFFD")},  // beyond U+10FFFF
      {"\xF5z", OLESTR("\uFFFDz")},
      {"\xE2\x82", OLESTR("\uFFFD")},  // cut off
      {"\xE2\x82z", OLESTR("\uFFFDz")},
      {"\xF0\x9F\x98", OLESTR("\uFFFD")},
      {"\xC3", OLESTR("\uFFFD")},
  };
  for (const broken_utf8& each : cases) EXPECT_EQ(ovf::wide_from_utf8(each.bytes), each.units);
}

TEST(bstr, a_null_one_is_empty) {
  EXPECT_TRUE(ovf::view_of(nullptr).empty());
  EXPECT_EQ(ovf::bstr_or_null(wide_view()), nullptr);
}

TEST(bstr, an_empty_one_can_be_asked_for) {
  const BSTR text = ovf::new_bstr(wide_view());
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(SysStringLen(text), 0u);
  SysFreeString(text);
}

TEST(bstr, keeps_nul_characters) {
  const BSTR text = ovf::bstr_or_null(wide_view(OLESTR("a\0b"), 3));
  EXPECT_EQ(ovf::view_of(text), wide_view(OLESTR("a\0b"), 3));
  SysFreeString(text);
}

TEST(wide_format, fills_texts_and_numbers_in) {
  EXPECT_EQ(ovf::wide_format(OLESTR("page %d of %s (%x: %s)"))
                .arg(7)
                .arg(OLESTR("assays"))
                .arg(0x1F)
                .arg(OLESTR("no"))
                .text(),
            OLESTR("page 7 of assays (1f: no)"));
}

TEST(wide_format, negative_numbers_and_the_other_decimal_place) {
  EXPECT_EQ(ovf::wide_format(OLESTR("%i|%d")).arg(-12).arg(-9223372036854775807LL - 1).text(),
            OLESTR("-12|-9223372036854775808"));
}

TEST(wide_format, a_value_with_a_place_in_it_is_not_read_again) {
  EXPECT_EQ(ovf::wide_format(OLESTR("%s-%s")).arg(OLESTR("%d")).arg(OLESTR("x")).text(), OLESTR("%d-x"));
}

TEST(wide_format, places_without_values_stay_and_values_without_places_go) {
  EXPECT_EQ(ovf::wide_format(OLESTR("%s %s")).arg(OLESTR("a")).text(), OLESTR("a %s"));
  EXPECT_EQ(ovf::wide_format(OLESTR("100 %")).arg(1).text(), OLESTR("100 %"));
}

}  // namespace
