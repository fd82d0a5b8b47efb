// Error information is part of the module: whoever holds it keeps the module.
#include <gtest/gtest.h>

#include "platform/object.h"

namespace {

class error_info_lock : public ::testing::Test {
 protected:
  long held() const { return ovf::module_lock_count() - before_; }

  static void publish() {
    ICreateErrorInfo* made = nullptr;
    ASSERT_EQ(CreateErrorInfo(&made), S_OK);
    IErrorInfo* info = nullptr;
    ASSERT_EQ(made->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&info)), S_OK);
    EXPECT_EQ(SetErrorInfo(0, info), S_OK);
    info->Release();
    made->Release();
  }

  void TearDown() override { SetErrorInfo(0, nullptr); }

 private:
  long before_ = ovf::module_lock_count();
};

TEST_F(error_info_lock, what_a_thread_holds_does_not_count) {
  publish();
  EXPECT_EQ(held(), 0);
  publish();
  EXPECT_EQ(held(), 0);
  EXPECT_EQ(SetErrorInfo(0, nullptr), S_OK);
  EXPECT_EQ(held(), 0);
}

TEST_F(error_info_lock, what_a_host_has_taken_counts_until_it_is_released) {
  publish();
  IErrorInfo* taken = nullptr;
  ASSERT_EQ(GetErrorInfo(0, &taken), S_OK);
  EXPECT_GT(held(), 0);
  EXPECT_EQ(SetErrorInfo(0, taken), S_OK);
  EXPECT_GT(held(), 0);
  taken->Release();
  EXPECT_EQ(held(), 0);
}

TEST_F(error_info_lock, one_that_is_being_made_counts) {
  ICreateErrorInfo* made = nullptr;
  ASSERT_EQ(CreateErrorInfo(&made), S_OK);
  EXPECT_GT(held(), 0);
  made->Release();
  EXPECT_EQ(held(), 0);
}

}  // namespace
