// A hundred thousand objects are made, used by name as a script uses them, and let go of: nothing of them
// stays.
#include "host/held_resources.h"
#include "host/host_table.h"

namespace ovtest {
namespace {

class many_objects : public host_test {
 protected:
  bool works(IDispatch& object, const char* name, WORD flags, const std::vector<VARIANT>& arguments,
             VARIANT* result = nullptr) const {
    return call(object, name, flags, arguments, result) == S_OK;
  }

  /// Two objects: a schema, which a table takes and hands out again.
  bool one_round(int round) {
    IDispatch* schema = make(CLSID_OvSchema);
    IDispatch* table = make(CLSID_OvTable);
    const BSTR name = text("V");
    VARIANT value{};
    VARIANT held{};
    bool worked = works(*schema, "AddNumericColumn", DISPATCH_METHOD,
                        {text_value(name), long_value(round), long_value(0)}) &&
                  works(*schema, "GetFieldDefault", DISPATCH_METHOD, {long_value(1)}, &value) &&
                  value.dblVal == round &&
                  works(*table, "Schema", DISPATCH_PROPERTYPUTREF, {object_value(schema)}) &&
                  works(*table, "Schema", DISPATCH_PROPERTYGET, {}, &held) && held.pdispVal != nullptr;
    // A failure carries texts, which are let go of too.
    worked = worked && !works(*table, "Open", DISPATCH_METHOD, {text_value(name), long_value(1)});
    call_.clear_variant(&held);
    call_.free_text(name);
    table->Release();
    schema->Release();
    return worked;
  }

  /// Two objects that read the table's file.
  bool one_reading() {
    IDispatch* table = make(CLSID_OvTable);
    IDispatch* records = make(CLSID_OvTableADO);
    const BSTR path = text(path_.string());
    const BSTR column = text("T");
    VARIANT value{};
    const bool worked = works(*table, "Open", DISPATCH_METHOD, {text_value(path), long_value(1)}) &&
                        works(*table, "GetColumn", DISPATCH_METHOD, {long_value(1)}, &value) &&
                        value.dblVal == 1.5 &&
                        works(*records, "Open", DISPATCH_METHOD, {text_value(path), long_value(1)}) &&
                        works(*records, "GetNamedColumn", DISPATCH_METHOD, {text_value(column)}, &value);
    call_.clear_variant(&value);
    call_.free_text(column);
    call_.free_text(path);
    records->Release();
    table->Release();
    return worked;
  }

  int rounds(int count) {
    int worked = 0;
    for (int i = 0; i < count; ++i) worked += one_round(i) ? 1 : 0;
    return worked;
  }
  int readings(int count) {
    int worked = 0;
    for (int i = 0; i < count; ++i) worked += one_reading() ? 1 : 0;
    return worked;
  }
};

TEST_F(many_objects, leave_nothing_behind) {
  ASSERT_EQ(200, rounds(200));
  ASSERT_EQ(50, readings(50));
  const std::size_t before = private_bytes();
  EXPECT_EQ(49000, rounds(49000));
  EXPECT_EQ(1000, readings(1000));
  const std::size_t after = private_bytes();
  RecordProperty("private_bytes_before", std::to_string(before));
  RecordProperty("private_bytes_after", std::to_string(after));
  EXPECT_LE(after, before + 256 * 1024) << before << " bytes before, " << after << " after";
  EXPECT_FALSE(holds_file(path_));
  EXPECT_EQ(S_OK, call_.can_unload_now());
}

TEST_F(many_objects, that_are_held_would_be_seen) {
  IDispatch* table = make(CLSID_OvTable);
  const BSTR path = text(path_.string());
  ASSERT_TRUE(works(*table, "Open", DISPATCH_METHOD, {text_value(path), long_value(1)}));
  EXPECT_TRUE(holds_file(path_));
  EXPECT_EQ(S_FALSE, call_.can_unload_now());
  call_.free_text(path);
  table->Release();
  EXPECT_FALSE(holds_file(path_));
}

}  // namespace
}  // namespace ovtest
