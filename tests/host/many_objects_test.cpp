// A hundred thousand objects are made, used by name as a script uses them, and let go of: nothing of them
// stays.
#include <vector>

#include "host/held_resources.h"
#include "host/host_table.h"

namespace ovtest {
namespace {

class many_objects : public host_test {
 protected:
  IDispatch* make(REFCLSID id) const {
    void* found = nullptr;
    if (call_.get_class_object(id, IID_IClassFactory, &found) != S_OK) return nullptr;
    auto* factory = static_cast<IClassFactory*>(found);
    void* made = nullptr;
    factory->CreateInstance(nullptr, IID_IDispatch, &made);
    factory->Release();
    return static_cast<IDispatch*>(made);
  }

  /// Arguments in their written order. Whether it worked, that is.
  bool call(IDispatch& object, const OLECHAR* name, WORD flags, std::vector<VARIANT> arguments,
            VARIANT* result = nullptr) {
    std::basic_string<OLECHAR> text(name);
    LPOLESTR pointer = text.data();
    DISPID id = 0;
    if (object.GetIDsOfNames(IID_NULL, &pointer, 1, 0, &id) != S_OK) return false;
    std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
    DISPID put = DISPID_PROPERTYPUT;
    const bool puts = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
    DISPPARAMS given{reversed.data(), puts ? &put : nullptr, static_cast<UINT>(reversed.size()),
                     puts ? 1U : 0U};
    EXCEPINFO exception{};
    const HRESULT status = object.Invoke(id, IID_NULL, 0, flags, &given, result, &exception, nullptr);
    call_.free_text(exception.bstrSource);
    call_.free_text(exception.bstrDescription);
    call_.free_text(exception.bstrHelpFile);
    return status == S_OK;
  }

  static VARIANT number(double value) {
    VARIANT made{};
    made.vt = VT_R8;
    made.dblVal = value;
    return made;
  }
  static VARIANT of_text(BSTR text) {
    VARIANT made{};
    made.vt = VT_BSTR;
    made.bstrVal = text;
    return made;
  }
  static VARIANT of_object(IDispatch* object) {
    VARIANT made{};
    made.vt = VT_DISPATCH;
    made.pdispVal = object;
    return made;
  }

  /// Two objects: a schema, which a table takes and hands out again.
  bool one_round(int round) {
    IDispatch* schema = make(CLSID_OvSchema);
    IDispatch* table = make(CLSID_OvTable);
    const BSTR name = text("V");
    VARIANT value{};
    VARIANT held{};
    bool worked = call(*schema, OLESTR("AddNumericColumn"), DISPATCH_METHOD,
                       {of_text(name), number(round), number(0)}) &&
                  call(*schema, OLESTR("GetFieldDefault"), DISPATCH_METHOD, {number(1)}, &value) &&
                  value.dblVal == round &&
                  call(*table, OLESTR("Schema"), DISPATCH_PROPERTYPUTREF, {of_object(schema)}) &&
                  call(*table, OLESTR("Schema"), DISPATCH_PROPERTYGET, {}, &held) && held.pdispVal != nullptr;
    // A failure carries texts, which are let go of too.
    worked = worked && !call(*table, OLESTR("Open"), DISPATCH_METHOD, {of_text(name), number(1)});
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
    const bool worked = call(*table, OLESTR("Open"), DISPATCH_METHOD, {of_text(path), number(1)}) &&
                        call(*table, OLESTR("GetColumn"), DISPATCH_METHOD, {number(1)}, &value) &&
                        value.dblVal == 1.5 &&
                        call(*records, OLESTR("Open"), DISPATCH_METHOD, {of_text(path), number(1)}) &&
                        call(*records, OLESTR("GetNamedColumn"), DISPATCH_METHOD, {of_text(column)}, &value);
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
  EXPECT_LE(after, before + 256 * 1024) << before << " bytes before, " << after << " after";
  EXPECT_FALSE(holds_file(path_));
  EXPECT_EQ(S_OK, call_.can_unload_now());
}

TEST_F(many_objects, that_are_held_would_be_seen) {
  IDispatch* table = make(CLSID_OvTable);
  const BSTR path = text(path_.string());
  ASSERT_TRUE(call(*table, OLESTR("Open"), DISPATCH_METHOD, {of_text(path), number(1)}));
  EXPECT_TRUE(holds_file(path_));
  EXPECT_EQ(S_FALSE, call_.can_unload_now());
  call_.free_text(path);
  table->Release();
  EXPECT_FALSE(holds_file(path_));
}

}  // namespace
}  // namespace ovtest
