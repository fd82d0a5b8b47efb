// There are no type descriptions on this system, and nobody is led to ask for one.
#include <gtest/gtest.h>

#include "support/component.h"

namespace ovtest {
namespace {

TEST(type_information, is_not_to_be_had) {
  const auto table = make_table();
  UINT count = 9;
  EXPECT_EQ(S_OK, table->GetTypeInfoCount(&count));
  EXPECT_EQ(0U, count);
  ITypeInfo* info = reinterpret_cast<ITypeInfo*>(&count);
  EXPECT_EQ(E_NOTIMPL, table->GetTypeInfo(0, 0, &info));
  EXPECT_EQ(nullptr, info);
  void* found = &count;
  EXPECT_EQ(E_NOINTERFACE, table->QueryInterface(IID_IProvideClassInfo, &found));
  EXPECT_EQ(nullptr, found);
}

}  // namespace
}  // namespace ovtest
