#include "filter/filter_module.h"

#include "filter/class_object.h"
#include "filter/filter_test.h"

namespace ovtest {

ovfile::pointer<IOvTable> make_table() {
  using get_class_object = HRESULT STDAPICALLTYPE(REFCLSID, REFIID, void**);
  const auto entry = reinterpret_cast<get_class_object*>(find_library_entry("DllGetClassObject"));
  void* found = nullptr;
  ovfile::pointer<IOvTable> table;
  EXPECT_EQ(S_OK, entry(CLSID_OvTable, IID_IClassFactory, &found));
  if (found == nullptr) return table;
  auto* classes = static_cast<IClassFactory*>(found);
  EXPECT_EQ(S_OK, classes->CreateInstance(nullptr, IID_IOvTable, &found));
  classes->Release();
  *table.out() = static_cast<IOvTable*>(found);
  return table;
}

void expect_found_by_class_identifier() {
  ASSERT_GE(CoInitialize(nullptr), 0);
  void* made = nullptr;
  EXPECT_EQ(S_OK, CoCreateInstance(CLSID_OvFilter, nullptr, CLSCTX_ALL, IID_IOvFilter, &made));
  ASSERT_NE(nullptr, made);
  auto* filter = static_cast<IOvFilter*>(made);
  EXPECT_EQ(S_OK, set_expression(*filter, "A = 1"));
  EXPECT_EQ(1, evaluate(*filter, "1"));
  filter->Release();
  // Any object does as the outer one of an attempt to make an inner one.
  IUnknown* outer = &ovf::filter::class_object();
  made = outer;
  EXPECT_EQ(CLASS_E_NOAGGREGATION,
            CoCreateInstance(CLSID_OvFilter, outer, CLSCTX_INPROC_SERVER, IID_IUnknown, &made));
  EXPECT_EQ(nullptr, made);
  CoUninitialize();
}

}  // namespace ovtest
