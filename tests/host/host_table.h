// A table file and a library loaded by path, for tests that know nothing but binary rules.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/host_load.h"
#include "support/file_bytes.h"
#include "support/scratch_folder.h"

namespace ovtest {

/// Two columns, V a number and T a text of 8 characters, three rows: 1.5 one, 2.5 two, 3.5 three.
bytes host_table_bytes();

/// The functions that a host needs.
struct host_functions {
  explicit host_functions(const loaded_library& library);

  decltype(::DllGetClassObject)* get_class_object;
  decltype(::DllCanUnloadNow)* can_unload_now;
  decltype(::SysAllocStringLen)* alloc_text;
  decltype(::SysFreeString)* free_text;
  decltype(::SysStringLen)* text_length;
  decltype(::GetErrorInfo)* get_error_info;
  decltype(::SetErrorInfo)* set_error_info;
  decltype(::VariantClear)* clear_variant;
};

inline VARIANT long_value(LONG value) {
  VARIANT made{};
  made.vt = VT_I4;
  made.lVal = value;
  return made;
}
/// The text stays its owner's.
inline VARIANT text_value(BSTR value) {
  VARIANT made{};
  made.vt = VT_BSTR;
  made.bstrVal = value;
  return made;
}
/// The reference stays its owner's.
inline VARIANT object_value(IDispatch* value) {
  VARIANT made{};
  made.vt = VT_DISPATCH;
  made.pdispVal = value;
  return made;
}

class host_test : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  /// The object's dispatch interface.
  IDispatch* make(REFCLSID id) const;
  IDispatch* make_table() const { return make(CLSID_OvTable); }

  static HRESULT id_of(IDispatch& object, const std::string& name, DISPID* id);
  /// Calls by name. Arguments stand in their written order, a property's new value last, and stay the
  /// caller's; so do the texts of `exception`, when there is one.
  HRESULT call(IDispatch& object, const std::string& name, WORD flags, const std::vector<VARIANT>& arguments,
               VARIANT* result = nullptr, EXCEPINFO* exception = nullptr) const;
  BSTR text(const std::string& ascii) const;
  std::string take(BSTR text) const;
  /// Takes the thread's error information: its description, and its source behind a bar.
  std::string take_error() const;

  scratch_folder folder_;
  std::filesystem::path path_ = folder_ / "host.ovt";
  loaded_library library_{OVFILE_LIBRARY_PATH};
  host_functions call_{library_};
};

}  // namespace ovtest
