// That memory which is held is seen, so that tests which look for none can fail.
#include <gtest/gtest.h>

#include <vector>

#include "host/held_resources.h"

namespace ovtest {
namespace {

TEST(held_resources, memory_is_counted) {
  constexpr std::size_t size = 16 * 1024 * 1024;
  const std::size_t before = private_bytes();
  ASSERT_LT(0U, before);
  const std::vector<char> held(size, 'x');
  EXPECT_LE(before + size, private_bytes()) << held.size();
}

}  // namespace
}  // namespace ovtest
