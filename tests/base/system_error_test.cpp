#include "base/system_error.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace {

TEST(system_error, the_code_is_kept_per_call) {
  ovf::set_last_system_error(5);
  EXPECT_EQ(ovf::last_system_error(), 5u);
  ovf::set_last_system_error(0);
  EXPECT_EQ(ovf::last_system_error(), 0u);
}

TEST(system_error, a_known_code_has_a_text_without_a_line_end) {
  const ovf::wide text = ovf::system_message(2);
  ASSERT_FALSE(text.empty());
  EXPECT_EQ(text.find_first_of(OLESTR("\r\n")), ovf::wide::npos);
  EXPECT_NE(text.back(), OLECHAR(' '));
}

TEST(system_error, an_unknown_code_has_a_text_too) {
  EXPECT_NE(ovf::system_message(0x2FFFFFFF).find(OLESTR("fffffff")), ovf::wide::npos);
}

TEST(system_error, a_status_is_a_failure_without_a_code_too) {
  ovf::set_last_system_error(0);
  EXPECT_EQ(ovf::last_error_status(), E_FAIL);
}

TEST(system_error, statuses_have_texts) {
  EXPECT_NE(ovf::status_message(DISP_E_TYPEMISMATCH), ovf::status_message(DISP_E_OVERFLOW));
  EXPECT_FALSE(ovf::status_message(E_OUTOFMEMORY).empty());
  EXPECT_EQ(ovf::status_message(DISP_E_TYPEMISMATCH).find_first_of(OLESTR("\r\n")), ovf::wide::npos);
}

TEST(system_error, an_unknown_status_is_told_by_number) {
  EXPECT_NE(ovf::status_message(static_cast<HRESULT>(0x8FFE1234u)).find(OLESTR("8ffe1234")), ovf::wide::npos);
}

}  // namespace
