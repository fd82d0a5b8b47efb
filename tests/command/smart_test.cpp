// The owners that hosts get: texts in both encodings, variants, pointers, failures as exceptions.
#include "ovfile/smart.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/component.h"
#include "support/scratch_folder.h"

namespace {

const ovfile::wide_string all_lengths = OLESTR("a\u00E9\u20AC\U0001F600");
constexpr const char* all_lengths_utf8 = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80";

TEST(smart, utf8_and_utf16_change_into_each_other) {
  EXPECT_EQ(ovfile::to_utf8(all_lengths), all_lengths_utf8);
  EXPECT_TRUE(ovfile::to_wide(all_lengths_utf8) == all_lengths);
  EXPECT_EQ(ovfile::to_utf8({}), "");
}

TEST(smart, surrogates_without_their_half_are_replaced) {
  const OLECHAR broken[] = {0xD800, u'a', 0xDC00, 0xD801};
  EXPECT_EQ(ovfile::to_utf8({broken, 4}),
            "\xEF\xBF\xBD"
            "a\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(smart, what_is_no_utf8_is_replaced_byte_by_byte) {
  const ovfile::wide_string replacement(1, OLECHAR(0xFFFD));
  for (const std::string one : {"\x80", "\xC3", "\xFF"})
    EXPECT_TRUE(ovfile::to_wide(one) == replacement) << one;
  // Overlong forms, a surrogate, a value above the last character, a character cut short.
  for (const std::string text :
       {"\xC0\xAF", "\xE0\x80\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xE2\x82"}) {
    const ovfile::wide_string wide = ovfile::to_wide(text);
    EXPECT_EQ(wide.size(), text.size());
    EXPECT_EQ(wide.find_first_not_of(OLECHAR(0xFFFD)), wide.npos);
  }
}

TEST(smart, a_text_owns_its_bstr) {
  ovfile::text text{std::string_view(all_lengths_utf8)};
  EXPECT_TRUE(text.view() == all_lengths);
  EXPECT_EQ(SysStringLen(text.get()), 5u);
  const ovfile::text copy = text;
  EXPECT_NE(copy.get(), text.get());
  EXPECT_EQ(copy.utf8(), all_lengths_utf8);
  const ovfile::text moved = std::move(text);
  EXPECT_EQ(moved.utf8(), all_lengths_utf8);
  ovfile::text taken = moved;
  *taken.out() = SysAllocString(OLESTR("new"));
  EXPECT_EQ(taken.utf8(), "new");
  EXPECT_EQ(ovfile::text().utf8(), "");
}

TEST(smart, a_variant_tells_what_it_holds) {
  EXPECT_EQ(ovfile::variant(1.5).number(), 1.5);
  EXPECT_EQ(ovfile::variant(0.5f).number(), 0.5);
  const ovfile::variant held{ovfile::text(std::string_view("words"))};
  const ovfile::variant copy = held;
  EXPECT_TRUE(copy.is_text());
  EXPECT_NE(copy.get().bstrVal, held.get().bstrVal);
  EXPECT_TRUE(copy.view() == OLESTR("words"));
  EXPECT_EQ(copy.number(), 0.0);
  EXPECT_EQ(ovfile::variant().type(), VT_EMPTY);
}

TEST(smart, objects_come_without_registration_and_answer_their_other_interfaces) {
  const auto table = ovfile::create_table();
  ASSERT_TRUE(table);
  EXPECT_TRUE(table.query<IOvTableMaintenance>());
  EXPECT_FALSE(table.query<IOvSchema>());
  EXPECT_TRUE(ovfile::create_schema().query<IZuCommonDataSchema>());
  EXPECT_FALSE(ovfile::pointer<IOvTable>().query<IOvSchema>());
}

TEST(smart, a_pointer_counts_references) {
  const auto count = [](IOvSchema* object) {
    object->AddRef();
    return object->Release();
  };
  auto first = ovfile::create_schema();
  EXPECT_EQ(count(first.get()), 1u);
  {
    const auto second = first;
    EXPECT_EQ(count(first.get()), 2u);
  }
  const auto third = std::move(first);
  EXPECT_FALSE(first);
  EXPECT_EQ(count(third.get()), 1u);
}

TEST(smart, a_failed_status_throws_what_was_published) {
  const ovtest::scratch_folder folder;
  const auto table = ovfile::create_table();
  try {
    ovfile::check(table->Open(ovtest::path_text(folder / "none.ovt").get(), 1));
    ADD_FAILURE() << "no failure";
  } catch (const ovfile::error& error) {
    EXPECT_EQ(error.status(), E_FAIL);
    EXPECT_STREQ(error.what(), "File does not exist");
    EXPECT_NE(error.source(), "");
  }
}

TEST(smart, a_failed_status_without_a_message_is_named_by_its_number) {
  SetErrorInfo(0, nullptr);
  try {
    ovfile::check(E_NOINTERFACE);
    ADD_FAILURE() << "no failure";
  } catch (const ovfile::error& error) {
    EXPECT_STREQ(error.what(), "failed with status 0x80004002");
    EXPECT_EQ(error.source(), "");
  }
  EXPECT_EQ(ovfile::check(S_FALSE), S_FALSE);
}

}  // namespace
