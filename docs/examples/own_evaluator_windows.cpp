// Prints how many rows of a table pass a filter: own_evaluator TABLE FILTER
// Neither module is registered: the evaluator of filters is made known to this program alone.
#include <cstdio>

#include "ovfile/filter.h"
#include "ovfile/smart.h"

/// Goes on working until the program ends.
static HRESULT make_evaluator_known() {
  using get_class_object = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
  const HMODULE module = LoadLibraryW(L"OvFilter.dll");
  if (module == nullptr) return E_FAIL;
  const auto found = reinterpret_cast<get_class_object>(
      reinterpret_cast<void*>(GetProcAddress(module, "DllGetClassObject")));
  if (found == nullptr) return E_FAIL;
  void* factory = nullptr;
  HRESULT status = found(CLSID_OvFilter, IID_IUnknown, &factory);
  if (FAILED(status)) return status;
  DWORD cookie = 0;
  status = CoRegisterClassObject(CLSID_OvFilter, static_cast<IUnknown*>(factory), CLSCTX_INPROC_SERVER,
                                 REGCLS_MULTIPLEUSE, &cookie);
  static_cast<IUnknown*>(factory)->Release();
  return status;
}

static int passing_rows(const char* file, const char* filter) {
  auto table = ovfile::create_table();
  ovfile::check(table->Open(ovfile::text(file).get(), 1));
  ovfile::check(table->put_FilterString(0, ovfile::text(filter).get()));
  int rows = 0;
  for (HRESULT at = table->GetFirstRow(); ovfile::check(at) == S_OK; at = table->GetNextRow()) {
    VARIANT_BOOL passes = 0;
    ovfile::check(table->IsFilteredIn(0, 0, &passes));
    if (passes == 1) ++rows;
  }
  return rows;
}

int main(int count, char** values) {
  if (count != 3) return 2;
  try {
    ovfile::check(CoInitialize(nullptr));
    ovfile::check(make_evaluator_known());
    std::printf("%d\n", passing_rows(values[1], values[2]));
    return 0;
  } catch (const ovfile::error& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
