// Prints the number of rows of a table: load_library TABLE
// The library is found when the program runs; nothing is linked or registered.
#include <cstdio>

#include "ovfile/ovfile.h"

using get_class_object = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);

static HRESULT make_table(HMODULE library, IOvTable** table) {
  const auto found = reinterpret_cast<get_class_object>(
      reinterpret_cast<void*>(GetProcAddress(library, "DllGetClassObject")));
  if (found == nullptr) return E_FAIL;
  IClassFactory* factory = nullptr;
  HRESULT status = found(CLSID_OvTable, IID_IClassFactory, reinterpret_cast<void**>(&factory));
  if (FAILED(status)) return status;
  status = factory->CreateInstance(nullptr, IID_IOvTable, reinterpret_cast<void**>(table));
  factory->Release();
  return status;
}

int wmain(int count, wchar_t** values) {
  HMODULE library = LoadLibraryW(L"OvFile.dll");
  IOvTable* table = nullptr;
  if (count != 2 || library == nullptr || FAILED(make_table(library, &table))) return 2;

  BSTR name = SysAllocString(values[1]);
  LONG rows = 0;
  HRESULT status = table->Open(name, 1);
  if (SUCCEEDED(status)) status = table->GetRowCount(&rows);
  std::printf("%ld rows, status 0x%08lX\n", rows, static_cast<unsigned long>(status));
  SysFreeString(name);
  table->Release();
  return FAILED(status) ? 1 : 0;
}
