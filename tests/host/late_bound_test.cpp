// A host that knows names alone, as a script does.
#include "host/host_table.h"

namespace ovtest {
namespace {

class late_bound : public host_test {
 protected:
  void SetUp() override {
    host_test::SetUp();
    table_ = make_table();
    ASSERT_NE(nullptr, table_);
  }

  void TearDown() override {
    if (table_ != nullptr) table_->Release();
    host_test::TearDown();
  }

  HRESULT open(const std::string& path, EXCEPINFO* exception = nullptr) {
    VARIANT name = text_value(text(path));
    const HRESULT status = call(*table_, "Open", DISPATCH_METHOD, {name, long_value(1)}, nullptr, exception);
    call_.clear_variant(&name);
    return status;
  }

  IDispatch* table_ = nullptr;
};

TEST_F(late_bound, hosts_walk_a_table) {
  ASSERT_EQ(S_OK, open(path_.string()));
  VARIANT value{};
  EXPECT_EQ(S_OK, call(*table_, "GetRowCount", DISPATCH_METHOD, {}, &value));
  EXPECT_EQ(VT_I4, value.vt);
  EXPECT_EQ(3, value.lVal);
  EXPECT_EQ(S_OK, call(*table_, "getfirstrow", DISPATCH_METHOD, {}, nullptr)) << "names have no case";
  const std::string expected[] = {"one     ", "two     ", "three   "};
  for (int row = 0; row < 3; ++row) {
    EXPECT_EQ(S_OK, call(*table_, "GetColumn", DISPATCH_METHOD, {long_value(1)}, &value));
    EXPECT_EQ(VT_R8, value.vt);
    EXPECT_EQ(row + 1.5, value.dblVal);
    EXPECT_EQ(S_OK, call(*table_, "GetColumnAsString", DISPATCH_METHOD, {long_value(2)}, &value));
    ASSERT_EQ(VT_BSTR, value.vt);
    EXPECT_EQ(expected[row], take(value.bstrVal));
    EXPECT_GE(call(*table_, "GetNextRow", DISPATCH_METHOD, {}, nullptr), 0) << "the end is no failure";
  }
  value = {};
  EXPECT_EQ(S_OK, call(*table_, "EOF", DISPATCH_PROPERTYGET, {}, &value));
  EXPECT_EQ(VT_BOOL, value.vt);
  EXPECT_EQ(1, value.boolVal);
  EXPECT_EQ(S_OK, call(*table_, "Close", DISPATCH_METHOD, {}, nullptr));
}

TEST_F(late_bound, arguments_are_changed_to_what_the_method_takes) {
  ASSERT_EQ(S_OK, open(path_.string()));
  VARIANT column = text_value(text("1"));
  VARIANT value{};
  EXPECT_EQ(S_OK, call(*table_, "GetColumnAsDouble", DISPATCH_METHOD, {column}, &value));
  EXPECT_EQ(1.5, value.dblVal);
  call_.clear_variant(&column);

  VARIANT word = text_value(text("first"));
  EXPECT_EQ(DISP_E_TYPEMISMATCH, call(*table_, "GetColumnAsDouble", DISPATCH_METHOD, {word}, &value));
  call_.clear_variant(&word);
  EXPECT_EQ(DISP_E_BADPARAMCOUNT, call(*table_, "GetColumnAsDouble", DISPATCH_METHOD, {}, &value));
  EXPECT_EQ(S_OK, call(*table_, "Close", DISPATCH_METHOD, {}, nullptr));
}

TEST_F(late_bound, a_failure_carries_source_description_and_status) {
  EXCEPINFO exception{};
  EXPECT_EQ(DISP_E_EXCEPTION, open((folder_ / "missing.ovt").string(), &exception));
  EXPECT_EQ(E_FAIL, exception.scode);
  EXPECT_EQ("File does not exist", take(exception.bstrDescription));
  EXPECT_EQ("OvFile.OvTable.1", take(exception.bstrSource));
  call_.free_text(exception.bstrHelpFile);
}

TEST_F(late_bound, an_unknown_name_has_no_number) {
  DISPID id = 7;
  EXPECT_EQ(DISP_E_UNKNOWNNAME, id_of(*table_, "GetColumnAsPoem", &id));
  EXPECT_EQ(DISPID_UNKNOWN, id);
}

TEST_F(late_bound, numbers_of_the_contract) {
  const std::pair<const char*, DISPID> expected[] = {
      {"GetColumnAsDouble", 1}, {"GetRowCount", 4}, {"GetNextRow", 5}, {"Schema", 7},
      {"GetFirstRow", 14},      {"Open", 19},       {"Close", 20},     {"IsLinked", 34}};
  for (const auto& [name, number] : expected) {
    DISPID id = 0;
    EXPECT_EQ(S_OK, id_of(*table_, name, &id)) << name;
    EXPECT_EQ(number, id) << name;
  }
}

}  // namespace
}  // namespace ovtest
