#include "platform/text_case.h"

#include <gtest/gtest.h>

namespace {

using ovf::equal_without_case;

TEST(text_case, ascii) {
  EXPECT_TRUE(equal_without_case(OLESTR("UseLongFieldNames"), OLESTR("uselongfieldNAMES")));
  EXPECT_FALSE(equal_without_case(OLESTR("a"), OLESTR("b")));
  EXPECT_FALSE(equal_without_case(OLESTR("a"), OLESTR("ab")));
  EXPECT_FALSE(equal_without_case(OLESTR("@"), OLESTR("`")));
  EXPECT_FALSE(equal_without_case(OLESTR("["), OLESTR("{")));
}

TEST(text_case, other_alphabets) {
  EXPECT_TRUE(equal_without_case(OLESTR("\u00C9\u0160\u0178"), OLESTR("\u00E9\u0161\u00FF")));
  EXPECT_TRUE(equal_without_case(OLESTR("\u0391\u03A9"), OLESTR("\u03B1\u03C9")));
  EXPECT_TRUE(equal_without_case(OLESTR("\u0416\u0401"), OLESTR("\u0436\u0451")));
}

TEST(text_case, signs_between_letters_are_no_letters) {
  EXPECT_FALSE(equal_without_case(OLESTR("\u00D7"), OLESTR("\u00F7")));
  EXPECT_FALSE(equal_without_case(OLESTR("\u00DF"), OLESTR("\u00FF")));
}

TEST(text_case, folding_twice_changes_nothing) {
  for (unsigned unit = 0; unit < 0x10000; ++unit) {
    const OLECHAR once = ovf::folded(static_cast<OLECHAR>(unit));
    ASSERT_EQ(ovf::folded(once), once) << unit;
  }
}

}  // namespace
