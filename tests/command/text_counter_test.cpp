#include "text_counter.h"

#include <gtest/gtest.h>

namespace {

using command::text_counter;
using frequencies = std::vector<std::pair<std::string, std::uint64_t>>;

TEST(text_counter, counts_exactly_up_to_the_limit) {
  text_counter::room room{3, 1 << 20};
  text_counter counter(room);
  for (const char* text : {"b", "a", "", "b", "c", "a", "b"}) counter.add(text);
  EXPECT_EQ(counter.values(), 6u);
  EXPECT_EQ(counter.blank(), 1u);
  EXPECT_EQ(counter.distinct(), 3u);
  EXPECT_TRUE(counter.exact());
  EXPECT_EQ(counter.most_frequent(2), (frequencies{{"b", 3}, {"a", 2}}));
  EXPECT_EQ(counter.most_frequent(9), (frequencies{{"b", 3}, {"a", 2}, {"c", 1}}));
}

TEST(text_counter, says_when_there_are_more) {
  text_counter::room room{2, 1 << 20};
  text_counter counter(room);
  for (const char* text : {"a", "b", "c", "b"}) counter.add(text);
  EXPECT_EQ(counter.values(), 4u);
  EXPECT_EQ(counter.distinct(), 2u);
  EXPECT_FALSE(counter.exact());
  EXPECT_EQ(counter.most_frequent(9), (frequencies{{"b", 2}, {"a", 1}}));
}

TEST(text_counter, columns_share_their_memory) {
  text_counter::room room{1000, 250};
  text_counter one(room);
  text_counter other(room);
  one.add("a");
  other.add("b");
  other.add("c");
  EXPECT_TRUE(one.exact());
  EXPECT_FALSE(other.exact());
  EXPECT_EQ(other.distinct(), 1u);
}

}  // namespace
