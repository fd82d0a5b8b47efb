// Names of members and arguments, and which member answers which kind of call.
#include <gtest/gtest.h>

#include "server/late_call.h"
#include "server/recording_schema.h"
#include "server/recording_table.h"

namespace ovtest {
namespace {

class late_names : public testing::Test {
 protected:
  HRESULT ids(std::vector<std::string> names, LCID locale = 0) {
    std::vector<wide> texts;
    for (const std::string& name : names) texts.push_back(ovfile::to_wide(name));
    std::vector<LPOLESTR> pointers;
    for (wide& text : texts) pointers.push_back(text.data());
    ids_.assign(names.size(), 77);
    return table_.dispatch().GetIDsOfNames(IID_NULL, pointers.data(), static_cast<UINT>(pointers.size()),
                                           locale, ids_.data());
  }

  recorded<recording_table, IOvTable> table_;
  std::vector<DISPID> ids_;
};

TEST_F(late_names, have_no_case) {
  for (const char* name : {"GetColumnAsDouble", "getcolumnasdouble", "GETCOLUMNASDOUBLE"}) {
    EXPECT_EQ(S_OK, ids({name})) << name;
    EXPECT_EQ(std::vector<DISPID>{1}, ids_);
  }
}

TEST_F(late_names, are_known_in_any_locale) {
  for (const LCID locale : {0U, 0x409U, 0x41FU, 0xFFFFFFFFU}) {
    EXPECT_EQ(S_OK, ids({"ISLINKED"}, locale)) << locale;
    EXPECT_EQ(std::vector<DISPID>{34}, ids_);
  }
}

TEST_F(late_names, of_arguments_follow_that_of_the_member) {
  EXPECT_EQ(S_OK, ids({"GetSignature", "IGNOREPRECISION", "ignoreDescription", "nPtsAfterDecimal"}));
  EXPECT_EQ((std::vector<DISPID>{40, 2, 0, 3}), ids_);
  EXPECT_EQ(S_OK, ids({"FilterString", "newVal", "nMode"}));
  EXPECT_EQ((std::vector<DISPID>{30, 1, 0}), ids_);
  EXPECT_EQ(S_OK, ids({"Open", "ReadOnly"}));
  EXPECT_EQ((std::vector<DISPID>{19, 1}), ids_);
}

TEST_F(late_names, that_are_unknown_say_so) {
  EXPECT_EQ(DISP_E_UNKNOWNNAME, ids({"GetColumnAsPoem"}));
  EXPECT_EQ(std::vector<DISPID>{DISPID_UNKNOWN}, ids_);
  EXPECT_EQ(DISP_E_UNKNOWNNAME, ids({""}));
  EXPECT_EQ(DISP_E_UNKNOWNNAME, ids({"get_Name"})) << "a property's name stands alone";
  EXPECT_EQ(DISP_E_UNKNOWNNAME, ids({"GetColumnAsPoem", "lIndex"}));
  EXPECT_EQ((std::vector<DISPID>{DISPID_UNKNOWN, DISPID_UNKNOWN}), ids_);
  EXPECT_EQ(DISP_E_UNKNOWNNAME, ids({"Open", "filenam", "ReadOnly", "pVal"}));
  EXPECT_EQ((std::vector<DISPID>{19, DISPID_UNKNOWN, 1, DISPID_UNKNOWN}), ids_) << "the known ones are told";
}

TEST_F(late_names, of_a_result_are_no_arguments) {
  EXPECT_EQ(DISP_E_UNKNOWNNAME, ids({"GetColumnAsDouble", "pVal"}));
  EXPECT_EQ((std::vector<DISPID>{1, DISPID_UNKNOWN}), ids_);
}

TEST_F(late_names, need_pointers_and_the_null_identifier) {
  wide name = OLESTR("Open");
  LPOLESTR pointer = name.data();
  DISPID id = 0;
  IDispatch& object = table_.dispatch();
  EXPECT_EQ(DISP_E_UNKNOWNINTERFACE, object.GetIDsOfNames(IID_IOvTable, &pointer, 1, 0, &id));
  EXPECT_EQ(E_POINTER, object.GetIDsOfNames(IID_NULL, nullptr, 1, 0, &id));
  EXPECT_EQ(E_POINTER, object.GetIDsOfNames(IID_NULL, &pointer, 1, 0, nullptr));
  EXPECT_EQ(E_INVALIDARG, object.GetIDsOfNames(IID_NULL, &pointer, 0, 0, &id));
  LPOLESTR nothing = nullptr;
  EXPECT_EQ(DISP_E_UNKNOWNNAME, object.GetIDsOfNames(IID_NULL, &nothing, 1, 0, &id));
  EXPECT_EQ(DISPID_UNKNOWN, id);
}

TEST_F(late_names, of_the_schemas_arguments) {
  const recorded<recording_schema, IOvSchema> schema;
  wide texts[] = {OLESTR("AddStringColumn"), OLESTR("name"), OLESTR("length"), OLESTR("defaultValue"),
                  OLESTR("implicit")};
  LPOLESTR names[] = {texts[0].data(), texts[1].data(), texts[2].data(), texts[3].data(), texts[4].data()};
  DISPID found[5] = {};
  EXPECT_EQ(S_OK, schema.dispatch().GetIDsOfNames(IID_NULL, names, 5, 0, found));
  EXPECT_EQ((std::vector<DISPID>{18, 0, 1, 2, 3}), std::vector<DISPID>(found, found + 5));
}

class late_kinds : public late_names {
 protected:
  HRESULT call(DISPID id, WORD flags) {
    table_.record().last.clear();
    return invoke(table_.dispatch(), id, flags, {}).status;
  }
  const std::string& last() const { return table_.record().last; }
};

TEST_F(late_kinds, methods_and_getters_answer_a_call_that_leaves_the_kind_open) {
  EXPECT_EQ(S_OK, call(4, DISPATCH_METHOD | DISPATCH_PROPERTYGET));
  EXPECT_EQ("GetRowCount()", last());
  EXPECT_EQ(S_OK, call(22, DISPATCH_METHOD | DISPATCH_PROPERTYGET));
  EXPECT_EQ("get_EOF()", last());
}

TEST_F(late_kinds, of_another_kind_are_not_found) {
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, call(4, DISPATCH_PROPERTYGET));
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, call(22, DISPATCH_METHOD));
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, call(22, DISPATCH_PROPERTYPUT)) << "the end cannot be put";
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, call(4, DISPATCH_PROPERTYPUTREF));
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, call(4, 0));
  EXPECT_EQ("", last());
}

TEST_F(late_kinds, of_unknown_numbers_are_not_found) {
  for (const DISPID id : {0, -1, 49, 1000, -2147483647}) {
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, call(id, DISPATCH_METHOD | DISPATCH_PROPERTYGET)) << id;
  }
}

TEST_F(late_kinds, need_the_null_identifier_and_parameters) {
  IDispatch& object = table_.dispatch();
  DISPPARAMS none{};
  EXPECT_EQ(DISP_E_UNKNOWNINTERFACE,
            object.Invoke(4, IID_IOvTable, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr));
  EXPECT_EQ(E_INVALIDARG, object.Invoke(4, IID_NULL, 0, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr));
  none.cArgs = 1;
  EXPECT_EQ(E_INVALIDARG, object.Invoke(1, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr));
}

TEST_F(late_kinds, have_one_description_at_most) {
  EXPECT_EQ(E_POINTER, table_.dispatch().GetTypeInfoCount(nullptr));
  UINT count = 9;
  EXPECT_EQ(S_OK, table_.dispatch().GetTypeInfoCount(&count));
  ITypeInfo* info = reinterpret_cast<ITypeInfo*>(&count);
  EXPECT_EQ(DISP_E_BADINDEX, table_.dispatch().GetTypeInfo(1, 0, &info));
  EXPECT_EQ(nullptr, info);
  EXPECT_EQ(E_POINTER, table_.dispatch().GetTypeInfo(0, 0, nullptr));
}

}  // namespace
}  // namespace ovtest
