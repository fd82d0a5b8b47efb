#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/debug_channel.h"

namespace {

TEST(debug_channel_stream, says_nothing_unless_asked_to) {
  unsetenv("OVFILE_DEBUG");
  testing::internal::CaptureStderr();
  ovf::debug_output(u"quiet");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(debug_channel_stream, writes_lines_in_utf8) {
  setenv("OVFILE_DEBUG", "1", 1);
  testing::internal::CaptureStderr();
  ovf::debug_output(u"caf\u00E9");
  ovf::debug_output(u"ended\n");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "caf\xC3\xA9\nended\n");
}

TEST(debug_channel_stream, writes_no_control_characters_of_a_file) {
  setenv("OVFILE_DEBUG", "1", 1);
  testing::internal::CaptureStderr();
  ovf::debug_output(u"a\u001B[2J\u009B\u007F\tb\r\nc");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "a.[2J..\tb\nc\n");
  unsetenv("OVFILE_DEBUG");
}

}  // namespace
