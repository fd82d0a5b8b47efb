#include "platform/atoms.h"

#include <gtest/gtest.h>

namespace {

TEST(atoms, are_found_once_added_and_until_removed) {
  const ovf::wide_view name = OLESTR("OvFile platform test \u00E9 %/\\");
  while (ovf::remove_global_atom(name)) {
  }
  EXPECT_FALSE(ovf::global_atom_exists(name));
  EXPECT_TRUE(ovf::add_global_atom(name));
  EXPECT_TRUE(ovf::global_atom_exists(name));
  EXPECT_TRUE(ovf::remove_global_atom(name));
  EXPECT_FALSE(ovf::global_atom_exists(name));
  EXPECT_FALSE(ovf::remove_global_atom(name));
}

TEST(atoms, one_without_a_name_cannot_be_added) {
  EXPECT_FALSE(ovf::add_global_atom({}));
  EXPECT_FALSE(ovf::global_atom_exists({}));
}

}  // namespace
