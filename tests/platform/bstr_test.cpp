#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "base/text.h"
#include "ovfile/component.h"

namespace {

std::uint32_t length_before(BSTR text) {
  std::uint32_t length = 0;
  std::memcpy(&length, reinterpret_cast<const char*>(text) - 4, 4);
  return length;
}

TEST(bstr_memory, the_length_in_bytes_lies_before_and_a_zero_behind) {
  const BSTR text = SysAllocString(OLESTR("abc"));
  EXPECT_EQ(length_before(text), 6u);
  EXPECT_EQ(text[3], OLECHAR(0));
  EXPECT_EQ(SysStringLen(text), 3u);
  EXPECT_EQ(SysStringByteLen(text), 6u);
  SysFreeString(text);
}

TEST(bstr_memory, null_pointers_are_harmless) {
  EXPECT_EQ(SysAllocString(nullptr), nullptr);
  EXPECT_EQ(SysStringLen(nullptr), 0u);
  EXPECT_EQ(SysStringByteLen(nullptr), 0u);
  SysFreeString(nullptr);
}

TEST(bstr_memory, a_length_without_a_text_makes_room) {
  const BSTR text = SysAllocStringLen(nullptr, 5);
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(SysStringLen(text), 5u);
  EXPECT_EQ(text[5], OLECHAR(0));
  SysFreeString(text);
}

TEST(bstr_memory, a_part_of_a_text_is_taken_with_its_nul_characters) {
  const BSTR text = SysAllocStringLen(OLESTR("a\0bcd"), 3);
  EXPECT_EQ(ovf::view_of(text), ovf::wide_view(OLESTR("a\0b"), 3));
  EXPECT_EQ(text[3], OLECHAR(0));
  SysFreeString(text);
}

TEST(bstr_memory, an_odd_number_of_bytes_is_kept) {
  const BSTR text = SysAllocStringByteLen("abc", 3);
  EXPECT_EQ(SysStringByteLen(text), 3u);
  EXPECT_EQ(SysStringLen(text), 1u);
  const auto* bytes = reinterpret_cast<const char*>(text);
  EXPECT_EQ(std::memcmp(bytes, "abc\0\0", 5), 0);
  SysFreeString(text);
}

TEST(bstr_memory, a_length_beyond_memory_is_refused) {
  EXPECT_EQ(SysAllocStringLen(nullptr, 0x80000000u), nullptr);
}

TEST(bstr_memory, an_exchange_takes_a_part_of_the_old_text) {
  BSTR text = SysAllocString(OLESTR("abcdef"));
  EXPECT_NE(SysReAllocStringLen(&text, text + 2, 3), 0);
  EXPECT_EQ(ovf::view_of(text), OLESTR("cde"));
  EXPECT_NE(SysReAllocString(&text, OLESTR("new")), 0);
  EXPECT_EQ(ovf::view_of(text), OLESTR("new"));
  SysFreeString(text);
}

}  // namespace
