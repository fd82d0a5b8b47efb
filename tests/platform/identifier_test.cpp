#include <gtest/gtest.h>

#include "base/text.h"
#include "ovfile/ovfile.h"

namespace {

constexpr GUID sample{0x3A9F6E21, 0xC48B, 0x4D07, {0xB2, 0x5E, 0x91, 0xC7, 0xA3, 0xD0, 0xF4, 0x68}};
constexpr const OLECHAR* sample_text = OLESTR("{3A9F6E21-C48B-4D07-B25E-91C7A3D0F468}");

TEST(identifier_text, is_braced_and_in_capitals) {
  OLECHAR text[39];
  EXPECT_EQ(StringFromGUID2(sample, text, 39), 39);
  EXPECT_EQ(ovf::wide(text), sample_text);
}

TEST(identifier_text, needs_room_for_its_end) {
  OLECHAR text[39];
  EXPECT_EQ(StringFromGUID2(sample, text, 38), 0);
}

TEST(identifier_text, reads_back_in_either_case) {
  CLSID id{};
  EXPECT_EQ(CLSIDFromString(sample_text, &id), S_OK);
  EXPECT_TRUE(IsEqualGUID(id, sample));
  EXPECT_EQ(CLSIDFromString(OLESTR("{3a9f6e21-c48b-4d07-b25e-91c7a3d0f468}"), &id), S_OK);
  EXPECT_TRUE(IsEqualGUID(id, sample));
}

TEST(identifier_text, broken_ones_are_refused_and_clear_the_result) {
  for (const OLECHAR* text :
       {OLESTR("{3A9F6E21-C48B-4D07-B25E-91C7A3D0F46}"), OLESTR("{3A9F6E21-C48B-4D07-B25E-91C7A3D0F46G}"),
        OLESTR("{3A9F6E21 C48B-4D07-B25E-91C7A3D0F468}"), OLESTR("{"), OLESTR("{}")}) {
    CLSID id = sample;
    EXPECT_EQ(CLSIDFromString(text, &id), CO_E_CLASSSTRING) << ovf::utf8_from_wide(text);
  }
}

TEST(identifier_text, no_text_is_the_null_identifier) {
  CLSID id = sample;
  EXPECT_EQ(CLSIDFromString(nullptr, &id), S_OK);
  EXPECT_TRUE(IsEqualGUID(id, GUID{}));
}

TEST(task_memory, is_given_resized_and_taken_back) {
  auto* bytes = static_cast<char*>(CoTaskMemAlloc(4));
  ASSERT_NE(bytes, nullptr);
  bytes[3] = 'x';
  bytes = static_cast<char*>(CoTaskMemRealloc(bytes, 4000));
  ASSERT_NE(bytes, nullptr);
  EXPECT_EQ(bytes[3], 'x');
  CoTaskMemFree(bytes);
  CoTaskMemFree(nullptr);
}

}  // namespace
