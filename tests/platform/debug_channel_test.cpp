#include "platform/debug_channel.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "base/system_error.h"

namespace {

class debug_channel : public testing::Test {
 protected:
  void TearDown() override { ovf::listen_to_debug_output({}); }
};

TEST_F(debug_channel, a_listener_gets_the_messages) {
  std::vector<ovf::wide> heard;
  ovf::listen_to_debug_output([&](ovf::wide_view message) { heard.emplace_back(message); });
  ovf::debug_output(OLESTR("one"));
  ovf::debug_output(OLESTR("two"));
  ovf::listen_to_debug_output({});
  ovf::debug_output(OLESTR("three"));
  EXPECT_EQ(heard, (std::vector<ovf::wide>{OLESTR("one"), OLESTR("two")}));
}

TEST_F(debug_channel, a_listener_that_throws_does_not_reach_the_writer) {
  ovf::listen_to_debug_output([](ovf::wide_view) { throw std::runtime_error("no"); });
  ovf::debug_output(OLESTR("one"));
}

TEST_F(debug_channel, the_last_error_survives_a_message) {
  ovf::listen_to_debug_output([](ovf::wide_view) { ovf::set_last_system_error(1); });
  ovf::set_last_system_error(13);
  ovf::debug_output(OLESTR("one"));
  EXPECT_EQ(ovf::last_system_error(), 13u);
}

}  // namespace
