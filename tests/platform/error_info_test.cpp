#include <gtest/gtest.h>

#include <thread>

#include "base/text.h"

namespace {

/// Releases what it holds at the end.
template <class Interface>
struct held {
  Interface* pointer = nullptr;
  held() = default;
  held(const held&) = delete;
  held& operator=(const held&) = delete;
  ~held() {
    if (pointer != nullptr) pointer->Release();
  }
};

void publish(const OLECHAR* description) {
  held<ICreateErrorInfo> made;
  ASSERT_EQ(CreateErrorInfo(&made.pointer), S_OK);
  ovf::wide text(description);
  EXPECT_EQ(made.pointer->SetDescription(text.data()), S_OK);
  held<IErrorInfo> info;
  ASSERT_EQ(made.pointer->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&info.pointer)), S_OK);
  EXPECT_EQ(SetErrorInfo(0, info.pointer), S_OK);
}

ovf::wide taken() {
  held<IErrorInfo> info;
  if (GetErrorInfo(0, &info.pointer) != S_OK) return OLESTR("(none)");
  BSTR text = nullptr;
  info.pointer->GetDescription(&text);
  ovf::wide result(ovf::view_of(text));
  SysFreeString(text);
  return result;
}

TEST(error_info, is_taken_once) {
  publish(OLESTR("failed"));
  EXPECT_EQ(taken(), OLESTR("failed"));
  EXPECT_EQ(taken(), OLESTR("(none)"));
}

TEST(error_info, a_later_one_replaces_an_earlier_one) {
  publish(OLESTR("first"));
  publish(OLESTR("second"));
  EXPECT_EQ(taken(), OLESTR("second"));
}

TEST(error_info, null_clears) {
  publish(OLESTR("failed"));
  EXPECT_EQ(SetErrorInfo(0, nullptr), S_OK);
  EXPECT_EQ(taken(), OLESTR("(none)"));
}

TEST(error_info, none_gives_a_null_pointer) {
  SetErrorInfo(0, nullptr);
  auto* info = reinterpret_cast<IErrorInfo*>(1);
  EXPECT_EQ(GetErrorInfo(0, &info), S_FALSE);
  EXPECT_EQ(info, nullptr);
}

TEST(error_info, belongs_to_its_thread) {
  publish(OLESTR("here"));
  std::thread([] {
    EXPECT_EQ(taken(), OLESTR("(none)"));
    publish(OLESTR("left behind"));
  }).join();
  EXPECT_EQ(taken(), OLESTR("here"));
}

TEST(error_info, carries_all_fields) {
  held<ICreateErrorInfo> made;
  ASSERT_EQ(CreateErrorInfo(&made.pointer), S_OK);
  const GUID id{0x01234567, 0x89AB, 0xCDEF, {1, 2, 3, 4, 5, 6, 7, 8}};
  ovf::wide source(OLESTR("OvFile.OvTable.1"));
  ovf::wide help(OLESTR("help.chm"));
  EXPECT_EQ(made.pointer->SetGUID(id), S_OK);
  EXPECT_EQ(made.pointer->SetSource(source.data()), S_OK);
  EXPECT_EQ(made.pointer->SetHelpFile(help.data()), S_OK);
  EXPECT_EQ(made.pointer->SetHelpContext(42), S_OK);
  held<IErrorInfo> info;
  ASSERT_EQ(made.pointer->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&info.pointer)), S_OK);

  GUID got{};
  EXPECT_EQ(info.pointer->GetGUID(&got), S_OK);
  EXPECT_TRUE(IsEqualGUID(got, id));
  BSTR text = nullptr;
  EXPECT_EQ(info.pointer->GetSource(&text), S_OK);
  EXPECT_EQ(ovf::view_of(text), OLESTR("OvFile.OvTable.1"));
  SysFreeString(text);
  EXPECT_EQ(info.pointer->GetHelpFile(&text), S_OK);
  EXPECT_EQ(ovf::view_of(text), OLESTR("help.chm"));
  SysFreeString(text);
  DWORD context = 0;
  EXPECT_EQ(info.pointer->GetHelpContext(&context), S_OK);
  EXPECT_EQ(context, 42u);
  EXPECT_EQ(info.pointer->GetDescription(&text), S_OK);
  EXPECT_TRUE(ovf::view_of(text).empty());
  SysFreeString(text);
}

TEST(error_info, reserved_values_are_refused) {
  IErrorInfo* info = nullptr;
  EXPECT_EQ(GetErrorInfo(1, &info), E_INVALIDARG);
  EXPECT_EQ(SetErrorInfo(1, nullptr), E_INVALIDARG);
}

}  // namespace
