// What the library shows to the world: the contract's names, and nothing else.
#include <gtest/gtest.h>

#include <algorithm>

#include "host/host_load.h"

namespace ovtest {
namespace {

std::string list_of(const std::set<std::string>& of, const std::set<std::string>& without) {
  std::string text;
  for (const std::string& name : of) {
    if (without.count(name) == 0) text += ' ' + name;
  }
  return text;
}

TEST(exports, are_those_of_the_contract_and_no_others) {
  const loaded_library library(OVFILE_LIBRARY_PATH);
  const std::set<std::string> contract = loaded_library::contract();
  const std::set<std::string> exported = library.exported_names();
  EXPECT_EQ("", list_of(contract, exported)) << "missing";
  EXPECT_EQ("", list_of(exported, contract)) << "too many";
}

TEST(exports, are_found_by_name) {
  const loaded_library library(OVFILE_LIBRARY_PATH);
  for (const std::string& name : loaded_library::contract()) {
    EXPECT_NE(nullptr, library.exported<void()>(name.c_str())) << name;
  }
  EXPECT_EQ(nullptr, library.exported<void()>("DllMainCRTStartup"));
}

}  // namespace
}  // namespace ovtest
