// A host that has no header of ours: interfaces are pointers to tables of plain functions, called by
// slot number, object first.
#include <cstring>

#include "host/host_table.h"

namespace ovtest {
namespace {

/// Calls slot `number` of an object's table with exactly these arguments.
template <class... Arguments>
HRESULT call_slot(void* object, std::size_t number, Arguments... arguments) {
  using method = HRESULT(STDMETHODCALLTYPE*)(void*, Arguments...);
  void** table = nullptr;
  std::memcpy(&table, object, sizeof table);
  method found = nullptr;
  std::memcpy(&found, table + number, sizeof found);
  return found(object, arguments...);
}

class vtable_slots : public host_test {
 protected:
  void SetUp() override {
    host_test::SetUp();
    table_ = make_table();
    ASSERT_NE(nullptr, table_);
  }

  void TearDown() override {
    if (table_ != nullptr) call_slot(table_, 2);
    host_test::TearDown();
  }

  HRESULT open(const std::string& path) {
    const BSTR name = text(path);
    const HRESULT status = call_slot(table_, 27, name, 1);
    call_.free_text(name);
    return status;
  }

  void* table_ = nullptr;
};

TEST_F(vtable_slots, walk_a_table) {
  ASSERT_EQ(S_OK, open(path_.string())) << take_error();
  LONG rows = 0;
  EXPECT_EQ(S_OK, call_slot(table_, 10, &rows));
  EXPECT_EQ(3, rows);

  const std::string expected[] = {"one     ", "two     ", "three   "};
  EXPECT_EQ(S_OK, call_slot(table_, 22));
  for (int row = 0; row < 3; ++row) {
    double number = 0;
    float single = 0;
    BSTR word = nullptr;
    EXPECT_EQ(S_OK, call_slot(table_, 7, 1, &number));
    EXPECT_EQ(S_OK, call_slot(table_, 8, 1, &single));
    EXPECT_EQ(S_OK, call_slot(table_, 9, 2, &word));
    EXPECT_EQ(row + 1.5, number);
    EXPECT_EQ(static_cast<float>(row) + 1.5F, single);
    EXPECT_EQ(expected[row], take(word));
    EXPECT_EQ(row < 2 ? S_OK : S_FALSE, call_slot(table_, 11));
  }
  VARIANT_BOOL at_end = 0;
  EXPECT_EQ(S_OK, call_slot(table_, 30, &at_end));
  EXPECT_EQ(1, at_end);
  EXPECT_EQ(S_OK, call_slot(table_, 28));
}

TEST_F(vtable_slots, read_a_value_as_a_variant) {
  ASSERT_EQ(S_OK, open(path_.string()));
  unsigned char variant[24];
  std::memset(variant, 0, sizeof variant);
  EXPECT_EQ(S_OK, call_slot(table_, 12, 1, variant));
  unsigned short type = 0;
  double number = 0;
  std::memcpy(&type, variant, sizeof type);
  std::memcpy(&number, variant + 8, sizeof number);
  EXPECT_EQ(5, type);
  EXPECT_EQ(1.5, number);
  EXPECT_EQ(S_OK, call_slot(table_, 28));
}

TEST_F(vtable_slots, publish_errors_with_their_source) {
  call_.set_error_info(0, nullptr);
  EXPECT_EQ(E_FAIL, open((folder_ / "missing.ovt").string()));
  EXPECT_EQ("File does not exist|OvFile.OvTable.1", take_error());
  EXPECT_EQ("", take_error()) << "error information is taken once";
}

TEST_F(vtable_slots, answer_the_schema_through_its_own_slots) {
  ASSERT_EQ(S_OK, open(path_.string()));
  void* schema = nullptr;
  ASSERT_EQ(S_OK, call_slot(table_, 13, &schema));
  ASSERT_NE(nullptr, schema);
  LONG count = 0;
  BSTR name = nullptr;
  LONG type = 0;
  EXPECT_EQ(S_OK, call_slot(schema, 14, &count));
  EXPECT_EQ(2, count);
  EXPECT_EQ(S_OK, call_slot(schema, 16, 2, &name));
  EXPECT_EQ("T", take(name));
  EXPECT_EQ(S_OK, call_slot(schema, 18, 2, &type));
  EXPECT_EQ(3, type);
  call_slot(schema, 2);
  EXPECT_EQ(S_OK, call_slot(table_, 28));
}

TEST_F(vtable_slots, keep_the_module_while_an_object_lives) { EXPECT_EQ(S_FALSE, call_.can_unload_now()); }

}  // namespace
}  // namespace ovtest
