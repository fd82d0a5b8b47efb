// Prints a column of numbers: early_bound TABLE COLUMN
// Knows of the library what its type library says, and finds it by its registration.
#include <initguid.h>
#include <windows.h>
// windows.h goes first.
#include <oleauto.h>

#include <cstdio>

#include "OvFileLib.h"

static HRESULT print_column(IOvTable& table, const wchar_t* file, LONG column) {
  const BSTR name = SysAllocString(file);
  HRESULT status = table.Open(name, 1);  // 1: for reading
  SysFreeString(name);
  if (SUCCEEDED(status)) status = table.GetFirstRow();
  while (status == S_OK) {  // S_FALSE: no (further) row
    double value = 0;
    status = table.GetColumnAsDouble(column, &value);
    if (SUCCEEDED(status)) std::printf("%g\n", value);
    if (SUCCEEDED(status)) status = table.GetNextRow();
  }
  return status;
}

int wmain(int count, wchar_t** values) {
  if (count != 3) return 2;
  HRESULT status = CoInitialize(nullptr);
  void* made = nullptr;
  if (SUCCEEDED(status)) {
    status = CoCreateInstance(CLSID_OvTable, nullptr, CLSCTX_INPROC_SERVER, IID_IOvTable, &made);
  }
  if (SUCCEEDED(status)) {
    auto* table = static_cast<IOvTable*>(made);
    status = print_column(*table, values[1], static_cast<LONG>(wcstol(values[2], nullptr, 10)));
    table->Release();
  }
  if (FAILED(status))
    std::fprintf(stderr, "failed with status 0x%08lX\n", static_cast<unsigned long>(status));
  CoUninitialize();
  return FAILED(status) ? 1 : 0;
}
