// What the registry does on every system. The key lies where nobody else writes and is gone afterwards.
#include "platform/registry.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

using ovf::registry_key;
using ovf::registry_root;

class registry : public testing::Test {
 protected:
  ~registry() override { ovf::delete_registry_tree(key); }

  registry_key below(const OLECHAR* name) const { return {key.root, key.path + OLESTR("\\") + name}; }

  /// Tests run beside each other, and on Windows they have one registry.
  static ovf::wide own_path() {
    return OLESTR("Software\\Orvexa\\OvFile.Test") +
           ovf::wide_from_ansi(std::to_string(std::random_device()()));
  }

  registry_key key{registry_root::current_user, own_path()};
};

TEST_F(registry, numbers_and_texts_read_back) {
  EXPECT_TRUE(ovf::set_registry_number(key, OLESTR("Number"), 0xFFFFFFFFu));
  EXPECT_TRUE(ovf::set_registry_text(key, OLESTR("Text"), OLESTR("C:\\a \"b\" \u20AC")));
  EXPECT_TRUE(ovf::set_registry_text(key, {}, OLESTR("the default")));
  EXPECT_EQ(ovf::registry_number(key, OLESTR("Number")), 0xFFFFFFFFu);
  EXPECT_EQ(ovf::registry_text(key, OLESTR("Text")), OLESTR("C:\\a \"b\" \u20AC"));
  EXPECT_EQ(ovf::registry_text(key, {}), OLESTR("the default"));
}

TEST_F(registry, case_does_not_matter) {
  EXPECT_TRUE(ovf::set_registry_number(key, OLESTR("UseLong"), 1));
  const registry_key other{
      key.root, OLESTR("SOFTWARE\\orvexa\\ovfile.TEST") + key.path.substr(key.path.rfind(OLESTR('T')) + 4)};
  EXPECT_EQ(ovf::registry_number(other, OLESTR("uselong")), 1u);
  EXPECT_TRUE(ovf::set_registry_number(other, OLESTR("USELONG"), 2));
  EXPECT_EQ(ovf::registry_number(key, OLESTR("UseLong")), 2u);
}

TEST_F(registry, what_is_missing_or_of_another_type_is_nothing) {
  EXPECT_FALSE(ovf::registry_number(key, OLESTR("Number")).has_value());
  EXPECT_FALSE(ovf::registry_key_exists(key));
  EXPECT_TRUE(ovf::set_registry_text(key, OLESTR("Text"), OLESTR("12")));
  EXPECT_TRUE(ovf::set_registry_number(key, OLESTR("Number"), 12));
  EXPECT_FALSE(ovf::registry_number(key, OLESTR("Text")).has_value());
  EXPECT_FALSE(ovf::registry_text(key, OLESTR("Number")).has_value());
  EXPECT_FALSE(ovf::registry_text(key, {}).has_value());
}

TEST_F(registry, a_value_changes_its_type) {
  EXPECT_TRUE(ovf::set_registry_text(key, OLESTR("Value"), OLESTR("12")));
  EXPECT_TRUE(ovf::set_registry_number(key, OLESTR("Value"), 12));
  EXPECT_EQ(ovf::registry_number(key, OLESTR("Value")), 12u);
  EXPECT_FALSE(ovf::registry_text(key, OLESTR("Value")).has_value());
}

TEST_F(registry, an_empty_text_is_a_value) {
  EXPECT_TRUE(ovf::set_registry_text(key, OLESTR("Text"), {}));
  EXPECT_EQ(ovf::registry_text(key, OLESTR("Text")), ovf::wide());
}

TEST_F(registry, a_tree_goes_with_all_below_it_and_nothing_beside_it) {
  const registry_key neighbour{key.root, key.path + OLESTR("2")};
  EXPECT_TRUE(ovf::make_registry_key(key));
  EXPECT_TRUE(ovf::set_registry_number(below(OLESTR("a\\b")), OLESTR("x"), 1));
  EXPECT_TRUE(ovf::set_registry_number(neighbour, OLESTR("x"), 2));
  EXPECT_TRUE(ovf::registry_key_exists(key));
  EXPECT_TRUE(ovf::registry_key_exists(below(OLESTR("a"))));
  EXPECT_TRUE(ovf::delete_registry_tree(key));
  EXPECT_FALSE(ovf::registry_key_exists(below(OLESTR("a\\b"))));
  EXPECT_FALSE(ovf::registry_key_exists(key));
  EXPECT_EQ(ovf::registry_number(neighbour, OLESTR("x")), 2u);
  EXPECT_TRUE(ovf::delete_registry_tree(neighbour));
}

TEST_F(registry, deleting_what_is_not_there_succeeds) { EXPECT_TRUE(ovf::delete_registry_tree(key)); }

TEST_F(registry, a_leaf_goes_when_nothing_is_below_it) {
  using action = ovf::registry_change::action;
  const auto delete_leaf = [](const registry_key& leaf) {
    return ovf::change_registry({{.what = action::delete_leaf, .key = leaf}});
  };
  EXPECT_TRUE(delete_leaf(key)) << "what is not there";
  EXPECT_TRUE(ovf::set_registry_text(key, {}, OLESTR("parent")));
  EXPECT_TRUE(ovf::set_registry_text(below(OLESTR("Child")), OLESTR("Value"), OLESTR("child")));
  EXPECT_TRUE(delete_leaf(key));
  EXPECT_EQ(ovf::registry_text(key, {}), OLESTR("parent")) << "it has a child";
  EXPECT_TRUE(delete_leaf(below(OLESTR("Child"))));
  EXPECT_FALSE(ovf::registry_key_exists(below(OLESTR("Child"))));
  EXPECT_TRUE(delete_leaf(key));
  EXPECT_FALSE(ovf::registry_key_exists(key));
}

TEST_F(registry, a_root_is_neither_written_nor_deleted) {
  const registry_key root{registry_root::current_user, {}};
  EXPECT_FALSE(ovf::delete_registry_tree(root));
  EXPECT_FALSE(ovf::set_registry_number(root, OLESTR("x"), 1));
}

TEST_F(registry, changes_are_made_in_their_order) {
  using action = ovf::registry_change::action;
  EXPECT_TRUE(ovf::change_registry(
      {{.what = action::set_number, .key = key, .name = OLESTR("a"), .number = 1},
       {.what = action::delete_tree, .key = key},
       {.what = action::set_text, .key = key, .name = OLESTR("b"), .text = OLESTR("c")}}));
  EXPECT_FALSE(ovf::registry_number(key, OLESTR("a")).has_value());
  EXPECT_EQ(ovf::registry_text(key, OLESTR("b")), OLESTR("c"));
}

}  // namespace
